#include "console/image_transfer.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "console/image_blocks.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

/// What a block takes at 9600 baud, and some more.
constexpr std::chrono::milliseconds kBlockPatience{400};
/// A device that is pulled out fails the write first, and is found gone a little later.
constexpr std::chrono::milliseconds kLossNews{300};

void name_chooser(TransferKind kind, FileChoice& choice) {
  switch (kind) {
    case TransferKind::firmware:
      choice.title = "Choose the firmware to send";
      choice.kind = "firmware";
      return;
    case TransferKind::font:
      choice.title = "Choose the font to send";
      choice.kind = "font";
      return;
    case TransferKind::user_data:
      choice.title = "Choose the user data to send: Cancel sends the present image";
      choice.kind = "dat";
      return;
  }
}

}  // namespace

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
    const std::vector<std::weak_ptr<RunningTransfer>> begun = begun_;
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

Task<std::optional<CommandLink::Hold>> ImageTransfer::wait_for_hold(RunningTransfer& transfer) {
  std::optional<CommandLink::Hold> hold;
  const Flow taking(take_hold(link_, hold, transfer.turn()));
  if (!hold && !co_await transfer.turn().pending()) co_return std::nullopt;
  co_return std::move(hold);
}

Task<TransferEnd> ImageTransfer::run(TransferKind kind) {
  const auto transfer = std::make_shared<RunningTransfer>(kind, link_, view_);
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

Task<TransferEnd> ImageTransfer::send_letter(CommandLink::Hold hold,
                                             std::shared_ptr<RunningTransfer> transfer) {
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
  const auto transfer = std::make_shared<RunningTransfer>(ended.kind, link_, view_, ended.rest);
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

Task<TransferEnd> ImageTransfer::send_all(CommandLink::Hold& hold,
                                          std::shared_ptr<RunningTransfer> transfer) {
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

Task<std::optional<BlockImage>> ImageTransfer::ask_for_image(RunningTransfer& transfer) {
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
  name_chooser(kind, choice);
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
  co_await prompts_.message(warning(std::move(text)));
}

Task<TransferEnd> ImageTransfer::send_image(CommandLink::Hold& hold, RunningTransfer& transfer,
                                            const BlockImage& image) {
  transfer.begin(image.count);
  std::vector<Chunk> chunks = image_chunks(image, transfer.style());
  const JobResult result = co_await transfer.send(hold, std::move(chunks), RunningTransfer::kHeader, 0);
  if (result.cancelled) co_return co_await end_cancelled(hold, transfer, result.chunks_sent);
  if (result.failed) co_return co_await end_failed(transfer, result);
  transfer.finish(image);
  co_return TransferEnd::sent;
}

Task<bool> ImageTransfer::is_lost(const RunningTransfer& transfer, JobResult sent) {
  if (!sent.lost && !transfer.reconnected()) co_await Delay(link_.scheduler(), kLossNews);
  co_return sent.lost || transfer.reconnected();
}

Task<TransferEnd> ImageTransfer::end_failed(const RunningTransfer& transfer, JobResult sent) {
  const bool lost = co_await is_lost(transfer, sent);
  co_return lost ? transfer.break_off(sent.chunks_sent) : transfer.cut_short(sent.chunks_sent);
}

Task<TransferEnd> ImageTransfer::end_cancelled(CommandLink::Hold& hold, RunningTransfer& transfer,
                                               std::size_t chunks_sent) {
  if (transfer.reconnected()) co_return transfer.break_off(chunks_sent);
  transfer.say("cancelled: sending what makes the chip reject it");
  JobResult result;
  result.cancelled = transfer.cancelled_twice();
  if (!result.cancelled) {
    // Without a header the chip is told of no blocks, and what leaves is header and checksum. Else the
    // announced number is filled up.
    const std::size_t other_chunks = chunks_sent == 0 ? 2 : 0;
    const std::size_t blocks_sent = chunks_sent == 0 ? 0 : chunks_sent - RunningTransfer::kHeader;
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
