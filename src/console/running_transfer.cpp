#include "console/running_transfer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "base/hex.h"
#include "base/text.h"

namespace qv5123 {
namespace {

std::string bracketed(const std::string& text) {
  return "\r\n< " + text + " >";
}

std::string kibibytes(double bytes) {
  return fixed(bytes / 1024, 1);
}

/// "12.5 of 64.0 KiB, 1.8 KiB/s, 29 s left". Without a speed as long as no time has passed.
std::string progress_text(std::size_t sent, std::size_t total, std::chrono::milliseconds time) {
  std::string text =
      kibibytes(static_cast<double>(sent)) + " of " + kibibytes(static_cast<double>(total)) + " KiB";
  if (time.count() <= 0 || sent == 0) return text;
  const double speed = static_cast<double>(sent) * 1000 / static_cast<double>(time.count());
  const long long left = std::llround(static_cast<double>(total - sent) / speed);
  return text + ", " + kibibytes(speed) + " KiB/s, " + std::to_string(left) + " s left";
}

/// "64.0 KiB in 35 s".
std::string summary(std::size_t bytes, std::chrono::milliseconds time) {
  return kibibytes(static_cast<double>(bytes)) + " KiB in " + std::to_string((time.count() + 500) / 1000) +
         " s";
}

}  // namespace

void RunningTransfer::say(const std::string& what) const {
  view_.append_console(bracketed(style().name + (" " + what)));
}

void RunningTransfer::tell(bool failed, const std::string& what) const {
  say(what);
  if (view_.tell) view_.tell(failed, style().name + (" " + what));
}

TransferEnd RunningTransfer::break_off(std::size_t chunks_sent) const {
  say_broken_off(chunks_sent, "the port was closed or lost");
  return TransferEnd::lost;
}

TransferEnd RunningTransfer::cut_short(std::size_t chunks_sent) const {
  say_broken_off(chunks_sent, "a write was cut short");
  return TransferEnd::cut_short;
}

void RunningTransfer::tell_rejected() const {
  tell(false, "ended with a wrong checksum: the chip expects commands again");
}

void RunningTransfer::tell_awaited(const std::string& how) const {
  tell(true, how + ": the chip still expects " + rest_.text());
}

void RunningTransfer::cancel() {
  ++cancels_;
  if (sending_) link_.cancel_running_job();
  turn_.resolve(false);
  asked_.resolve(false);
}

void RunningTransfer::begin(std::size_t block_count) {
  block_count_ = block_count;
  started_ = link_.scheduler().now();
}

void RunningTransfer::finish(const BlockImage& image) const {
  view_.set_progress(final_bar_position(kind_, image.count));
  const std::string sent = summary(image.bytes.size(), link_.scheduler().now() - started_);
  view_.show_progress_text(sent);
  if (view_.tell) view_.tell(false, style().name + (" sent: " + sent));
  if (kind_ == TransferKind::user_data) return view_.append_console("\r\n User data sent..");
  const std::string checksum = "0x" + upper_hex(image.checksum());
  say("sent: " + std::to_string(image.count) + " blocks, checksum " + checksum);
}

Task<JobResult> RunningTransfer::send(CommandLink::Hold& hold, std::vector<Chunk> chunks,
                                      std::size_t other_chunks, std::size_t blocks_before) {
  Job job;
  job.chunks = chunks;
  job.on_progress = [weak = weak_from_this(), other_chunks, blocks_before](std::size_t sent) {
    const auto self = weak.lock();
    if (self && sent > other_chunks) self->show(blocks_before + sent - other_chunks);
  };
  sending_ = true;
  const JobResult result = co_await hold.send(std::move(job));
  sending_ = false;
  if (announced_) note_sent(chunks, result.bytes_sent);
  co_return result;
}

void RunningTransfer::say_broken_off(std::size_t chunks_sent, const std::string& why) const {
  view_.set_progress(0);
  view_.show_progress_text("");
  const std::size_t blocks = std::min(chunks_sent > kHeader ? chunks_sent - kHeader : 0, block_count_);
  const std::string after = std::to_string(blocks) + " of " + std::to_string(block_count_);
  tell(true, "broken off " + (block_count_ == 0 ? "before the image" : "after " + after + " blocks") + ": " +
                 why + ", the chip still expects " + rest_.text());
}

void RunningTransfer::show(std::size_t blocks_sent) const {
  if (blocks_sent > block_count_) return;  // the checksum
  view_.set_progress(bar_position(kind_, blocks_sent, block_count_));
  const auto time = link_.scheduler().now() - started_;
  view_.show_progress_text(progress_text(blocks_sent * kBlockSize, block_count_ * kBlockSize, time));
}

void RunningTransfer::note_sent(const std::vector<Chunk>& chunks, std::size_t bytes_sent) {
  for (const Chunk& chunk : chunks) {
    const std::size_t count = std::min(bytes_sent, chunk.bytes.size());
    rest_.take(std::span(chunk.bytes).first(count));
    bytes_sent -= count;
  }
}

}  // namespace qv5123
