#include "console/image_transfer.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "console/image_file.h"
#include "console/setting_file.h"
#include "console/transfer_text.h"

namespace qv5123 {
namespace {

constexpr std::size_t kHeader = 1;  // chunks before the first block
/// What a block takes at 9600 baud, and some more.
constexpr std::chrono::milliseconds kBlockPatience{400};
/// A device that is pulled out fails the write first, and is found gone a little later.
constexpr std::chrono::milliseconds kLossNews{300};

std::string bracketed(const std::string& text) {
  return "\r\n< " + text + " >";
}

}  // namespace

/// One transfer while it lasts. Jobs on the link may outlive it, and then find it gone.
class ImageTransfer::Transfer : public std::enable_shared_from_this<Transfer> {
 public:
  Transfer(TransferKind kind, CommandLink& link, const TransferView& view)
      : kind_(kind), link_(link), view_(view) {}
  /// The end of one that was left waiting for `rest`.
  Transfer(TransferKind kind, CommandLink& link, const TransferView& view, const ExpectedRest& rest)
      : kind_(kind), link_(link), view_(view), announced_(true), rest_(rest) {}

  TransferKind kind() const { return kind_; }
  const TransferStyle& style() const { return style_of(kind_); }
  /// "FIRMWARE" and what came of it, on the console.
  void say(const std::string& what) const { view_.append_console(bracketed(style().name + (" " + what))); }
  /// The same in the status bar as well.
  void tell(bool failed, const std::string& what) const {
    say(what);
    if (view_.tell) view_.tell(failed, style().name + (" " + what));
  }
  const ExpectedRest& rest() const { return rest_; }
  /// Whether the letter left, and what belongs behind it did not.
  bool is_awaited() const { return announced_ && rest_.bytes() > 0; }

  /// The end of a transfer that lost its chip after `chunks_sent` chunks of the image.
  TransferEnd break_off(std::size_t chunks_sent) const {
    say_broken_off(chunks_sent, "the port was closed or lost");
    return TransferEnd::lost;
  }
  /// The end of a transfer of which only a part has left, to a chip that is still there.
  TransferEnd cut_short(std::size_t chunks_sent) const {
    say_broken_off(chunks_sent, "a write was cut short");
    return TransferEnd::cut_short;
  }
  void tell_rejected() const { tell(false, "ended with a wrong checksum: the chip expects commands again"); }
  void tell_awaited(const std::string& how) const {
    tell(true, how + ": the chip still expects " + rest_.text());
  }

  /// Resolved with whether to go on once the wire is held, or as soon as the transfer is given up.
  const Resolver<bool>& turn() const { return turn_; }
  /// Resolved once there is an image, or nothing to send one for any more.
  const Resolver<bool>& asked() const { return asked_; }

  void cancel() {
    ++cancels_;
    if (sending_) link_.cancel_running_job();
    turn_.resolve(false);
    asked_.resolve(false);
  }
  bool cancelled() const { return cancels_ > 0; }
  bool cancelled_twice() const { return cancels_ > 1; }

  /// Called before the letter leaves: the chip that gets it is the one that the image is for.
  void remember_connection() { connection_ = link_.connection(); }
  /// Whether the port was away since. The chip then takes what follows for commands, or is another one.
  bool reconnected() const { return link_.connection() != connection_; }

  /// The letter has left.
  void announce() { announced_ = true; }

  /// Speed and time left count from here.
  void begin(std::size_t block_count) {
    block_count_ = block_count;
    started_ = link_.scheduler().now();
  }

  /// All has left.
  void finish(const BlockImage& image) const {
    view_.set_progress(final_bar_position(kind_, image.count));
    const std::string sent = summary(image.bytes.size(), link_.scheduler().now() - started_);
    view_.show_progress_text(sent);
    if (view_.tell) view_.tell(false, style().name + (" sent: " + sent));
    if (kind_ == TransferKind::user_data) return view_.append_console("\r\n User data sent..");
    char checksum[8];
    std::snprintf(checksum, sizeof checksum, "0x%02X", static_cast<unsigned>(image.checksum()));
    say("sent: " + std::to_string(image.count) + " blocks, checksum " + checksum);
  }

  /// Sends `other_chunks` chunks and then blocks, before which `blocks_before` have left already.
  Task<JobResult> send(CommandLink::Hold& hold, std::vector<Chunk> chunks, std::size_t other_chunks,
                       std::size_t blocks_before) {
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

 private:
  void say_broken_off(std::size_t chunks_sent, const std::string& why) const {
    view_.set_progress(0);
    view_.show_progress_text("");
    const std::size_t blocks = std::min(chunks_sent > kHeader ? chunks_sent - kHeader : 0, block_count_);
    const std::string after = std::to_string(blocks) + " of " + std::to_string(block_count_);
    tell(true, "broken off " + (block_count_ == 0 ? "before the image" : "after " + after + " blocks") +
                   ": " + why + ", the chip still expects " + rest_.text());
  }

  void show(std::size_t blocks_sent) const {
    if (blocks_sent > block_count_) return;  // the checksum
    view_.set_progress(bar_position(kind_, blocks_sent, block_count_));
    const auto time = link_.scheduler().now() - started_;
    view_.show_progress_text(progress_text(blocks_sent * kBlockSize, block_count_ * kBlockSize, time));
  }

  void note_sent(const std::vector<Chunk>& chunks, std::size_t bytes_sent) {
    for (const Chunk& chunk : chunks) {
      const std::size_t count = std::min(bytes_sent, chunk.bytes.size());
      rest_.take(std::span(chunk.bytes).first(count));
      bytes_sent -= count;
    }
  }

  TransferKind kind_;
  CommandLink& link_;
  const TransferView view_;
  bool announced_ = false;
  ExpectedRest rest_;
  Resolver<bool> turn_;
  Resolver<bool> asked_;
  unsigned connection_ = 0;
  std::size_t block_count_ = 0;
  std::chrono::milliseconds started_{0};
  int cancels_ = 0;
  bool sending_ = false;
};

ImageTransfer::ImageTransfer(CommandLink& link, CQV5123Doc& document, Prompts& prompts,
                             Background& background, TransferView view)
    : link_(link), document_(document), prompts_(prompts), background_(background), view_(std::move(view)) {}

void ImageTransfer::cancel() {
  for (const auto& begun : begun_) {
    if (const auto transfer = begun.lock()) return transfer->cancel();
  }
}

Task<> ImageTransfer::end_all(std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kLook{50};
  Flow ending;
  // Cancelled once more, what is left stops where it stands: after the block that is being sent.
  for (const std::chrono::milliseconds wait : {patience, kBlockPatience}) {
    const std::vector<std::weak_ptr<Transfer>> begun = begun_;
    // From the last one on, so that none has its turn by the end of another.
    for (auto each = begun.rbegin(); each != begun.rend(); ++each) {
      if (const auto transfer = each->lock()) transfer->cancel();
    }
    if (waiting_ && !ending.running()) ending.start(end_waiting());
    const auto expired = [](const auto& each) { return each.expired(); };
    const auto end = link_.scheduler().now() + wait;
    while ((!std::ranges::all_of(begun, expired) || ending.running()) && link_.scheduler().now() < end) {
      co_await Delay(link_.scheduler(), kLook);
    }
  }
}

namespace {

Task<> take_hold(CommandLink& link, std::optional<CommandLink::Hold>& hold, Resolver<bool> taken) {
  hold.emplace(co_await link.hold());
  // Posted, since who waits for it ends this flow.
  link.scheduler().post([taken] { taken.resolve(true); });
}

}  // namespace

Task<std::optional<CommandLink::Hold>> ImageTransfer::wait_for_hold(Transfer& transfer) {
  std::optional<CommandLink::Hold> hold;
  const Flow taking(take_hold(link_, hold, transfer.turn()));
  if (!hold && !co_await transfer.turn().pending()) co_return std::nullopt;
  co_return std::move(hold);
}

Task<TransferEnd> ImageTransfer::run(TransferKind kind) {
  const auto transfer = std::make_shared<Transfer>(kind, link_, view_);
  std::erase_if(begun_, [](const auto& begun) { return begun.expired(); });
  begun_.push_back(transfer);
  // The chip takes whatever follows the letter as part of the image, so the wire is held from there on.
  std::optional<CommandLink::Hold> hold = co_await wait_for_hold(*transfer);
  if (!hold) {
    transfer->say("cancelled before its turn: nothing was sent");
    co_return TransferEnd::cancelled;
  }
  co_return co_await send_letter(std::move(*hold), transfer);
}

Task<TransferEnd> ImageTransfer::send_letter(CommandLink::Hold hold, std::shared_ptr<Transfer> transfer) {
  const TransferEnd end = co_await send_all(hold, transfer);
  if (view_.keeps_waiting && transfer->is_awaited()) {
    waiting_.emplace(Waiting{std::move(hold), transfer->kind(), transfer->rest()});
  }
  co_return end;
}

std::string ImageTransfer::waiting_text() const {
  return std::string(style_of(waiting_->kind).name) + ": the chip still expects " + waiting_->rest.text();
}

Task<> ImageTransfer::end_waiting() {
  if (!waiting_) co_return;
  Waiting ended = std::move(*waiting_);
  waiting_.reset();
  const auto transfer = std::make_shared<Transfer>(ended.kind, link_, view_, ended.rest);
  begun_.insert(begun_.begin(), transfer);
  current_ = transfer;
  std::vector<Chunk> chunks = ended.rest.ending(transfer->style());
  const std::size_t count = chunks.size();
  const JobResult result = co_await transfer->send(ended.hold, std::move(chunks), count, 0);
  if (result.failed || result.cancelled) {
    transfer->tell_awaited("not ended");
    waiting_.emplace(Waiting{std::move(ended.hold), ended.kind, transfer->rest()});
  } else {
    transfer->tell_rejected();
  }
}

Task<TransferEnd> ImageTransfer::send_all(CommandLink::Hold& hold, std::shared_ptr<Transfer> transfer) {
  current_ = transfer;
  view_.set_progress(0);
  view_.show_progress_text("");
  std::vector<Chunk> letter(1);
  letter[0].bytes.push_back(static_cast<std::uint8_t>(transfer->style().letter));
  transfer->remember_connection();
  const JobResult sent = co_await transfer->send(hold, std::move(letter), 1, 0);
  if (sent.failed) {
    const bool lost = co_await is_lost(*transfer, sent);
    transfer->say(lost ? "not sent: the port is closed or lost" : "not sent: the line stands still");
    co_return lost ? TransferEnd::lost : TransferEnd::cut_short;
  }
  if (sent.chunks_sent == 0) {
    transfer->say("not sent");
    co_return TransferEnd::cancelled;
  }
  transfer->announce();
  if (*transfer->style().ready_text) view_.append_console(transfer->style().ready_text);
  std::optional<BlockImage> image;
  if (!transfer->cancelled() && !transfer->reconnected()) image = co_await ask_for_image(*transfer);
  if (transfer->reconnected()) co_return transfer->break_off(0);
  if (transfer->cancelled()) co_return co_await end_cancelled(hold, *transfer, 0);
  if (image) co_return co_await send_image(hold, *transfer, *image);
  transfer->tell(true, "not sent: the chip still waits for it");
  co_return TransferEnd::not_sent;
}

Task<std::optional<BlockImage>> ImageTransfer::ask_for_image(Transfer& transfer) {
  std::optional<BlockImage> image;
  const Flow asking(take_image(transfer.kind(), image, transfer.asked()));
  // Nobody need answer for a chip that is gone.
  link_.resolve_on_connection_change(transfer.asked());
  co_await transfer.asked().pending();
  co_return image;
}

Task<> ImageTransfer::take_image(TransferKind kind, std::optional<BlockImage>& image, Resolver<bool> taken) {
  image = co_await choose_image(kind);
  // Posted, since who waits for it ends this flow.
  link_.scheduler().post([taken] { taken.resolve(true); });
}

Task<std::optional<BlockImage>> ImageTransfer::choose_image(TransferKind kind) {
  FileChoice choice;
  choice.filter = style_of(kind).filter;
  choice.default_extension = style_of(kind).extension;
  std::optional<std::filesystem::path> path = co_await prompts_.choose_open(std::move(choice));
  if (kind == TransferKind::user_data) co_return co_await read_user_data(std::move(path));
  if (!path) co_return std::nullopt;
  co_return co_await read_binary(std::move(*path));
}

Task<std::optional<BlockImage>> ImageTransfer::read_binary(std::filesystem::path path) {
  const std::string name = path_text(path);
  std::function<ReadFile()> work = [path = std::move(path)] { return read_image_file(path); };
  const ReadFile file = co_await background_.run<ReadFile>(std::move(work));
  if (!file.too_large.empty()) {
    co_await warn(file.too_large);
    co_return std::nullopt;
  }
  if (!file.result.ok()) {
    view_.append_console("\r\n" + file.result.text);
    co_await warn("file open error");
    co_return std::nullopt;
  }
  const bool wanted = file.bytes.size() <= kImageFits || co_await may_send_wrapped(name, file.bytes.size());
  if (!wanted) co_return std::nullopt;
  co_return blocks_of({reinterpret_cast<const std::uint8_t*>(file.bytes.data()), file.bytes.size()});
}

Task<bool> ImageTransfer::may_send_wrapped(std::string file, std::size_t size) {
  Question question =
      careful_question(file + " has " + std::to_string(size) + " bytes, " + std::to_string(kImageFits) +
                       " fit: the number of blocks is one byte and becomes 0, so that the chip gets a header "
                       "and a checksum and "
                       "nothing of the file.\n\nSend that all the same?");
  const Answer answer = co_await prompts_.ask(std::move(question));
  co_return answer == Answer::yes;
}

Task<std::optional<BlockImage>> ImageTransfer::read_user_data(std::optional<std::filesystem::path> path) {
  // A file only replaces the image. Without one the image is sent as it is.
  if (path) {
    const ReadSettings read = co_await read_setting_file(background_, std::move(*path));
    if (!read.result.ok()) {
      co_await warn(read.result.text);
      co_return std::nullopt;
    }
    const bool wanted = read.oddity.empty() || co_await may_send(read.oddity);
    if (!wanted) co_return std::nullopt;
    document_.user_data = read.image;
  }
  co_return blocks_of(document_.user_data.bytes());
}

Task<bool> ImageTransfer::may_send(std::string oddity) {
  view_.append_console("\r\n" + oddity);
  Question question =
      careful_question("This is no whole setting file.\n\n" + oddity + "\n\nSend it all the same?");
  co_return co_await prompts_.ask(std::move(question)) == Answer::yes;
}

Task<> ImageTransfer::warn(std::string text) {
  Message message;
  message.text = std::move(text);
  message.icon = Message::Icon::warning;
  co_await prompts_.message(std::move(message));
}

Task<TransferEnd> ImageTransfer::send_image(CommandLink::Hold& hold, Transfer& transfer,
                                            const BlockImage& image) {
  transfer.begin(image.count);
  std::vector<Chunk> chunks = image_chunks(image, transfer.style());
  const JobResult result = co_await transfer.send(hold, std::move(chunks), kHeader, 0);
  if (result.cancelled) co_return co_await end_cancelled(hold, transfer, result.chunks_sent);
  if (result.failed) co_return co_await end_failed(transfer, result);
  transfer.finish(image);
  co_return TransferEnd::sent;
}

Task<bool> ImageTransfer::is_lost(const Transfer& transfer, JobResult sent) {
  if (!sent.lost && !transfer.reconnected()) co_await Delay(link_.scheduler(), kLossNews);
  co_return sent.lost || transfer.reconnected();
}

Task<TransferEnd> ImageTransfer::end_failed(const Transfer& transfer, JobResult sent) {
  const bool lost = co_await is_lost(transfer, sent);
  co_return lost ? transfer.break_off(sent.chunks_sent) : transfer.cut_short(sent.chunks_sent);
}

Task<TransferEnd> ImageTransfer::end_cancelled(CommandLink::Hold& hold, Transfer& transfer,
                                               std::size_t chunks_sent) {
  if (transfer.reconnected()) co_return transfer.break_off(chunks_sent);
  transfer.say("cancelled: sending what makes the chip reject it");
  JobResult result;
  result.cancelled = transfer.cancelled_twice();
  if (!result.cancelled) {
    // Without a header the chip is told of no blocks, and what leaves is header and checksum. Else the
    // announced number is filled up.
    const std::size_t other_chunks = chunks_sent == 0 ? 2 : 0;
    const std::size_t blocks_sent = chunks_sent == 0 ? 0 : chunks_sent - kHeader;
    std::vector<Chunk> chunks = transfer.rest().ending(transfer.style());
    result = co_await transfer.send(hold, std::move(chunks), other_chunks, blocks_sent);
  }
  view_.set_progress(0);
  view_.show_progress_text("");
  if (result.failed) {
    result.chunks_sent += chunks_sent;
    co_return co_await end_failed(transfer, result);
  }
  if (result.cancelled) {
    transfer.tell_awaited("stopped");
  } else {
    transfer.tell_rejected();
  }
  co_return TransferEnd::cancelled;
}

}  // namespace qv5123
