#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/background.h"
#include "console/document.h"
#include "console/prompts.h"
#include "console/running_transfer.h"
#include "link/command_link.h"

namespace qv5123 {

/// Sends image files to the chip: command letter, file chosen by the user, blocks, checksum. From the letter
/// to the end nothing else reaches the wire; what others send meanwhile waits its turn.
class ImageTransfer {
 public:
  ImageTransfer(CommandLink& link, CQV5123Doc& document, Prompts& prompts, Background& background,
                TransferView view);
  ImageTransfer(const ImageTransfer&) = delete;
  ImageTransfer& operator=(const ImageTransfer&) = delete;

  /// One transfer from its button to its end. Waits for transfers that were begun before. User data for which
  /// no file is chosen is sent as the image holds it; other images are not sent without a file.
  Task<TransferEnd> run(TransferKind kind);

  /// Asks the transfer to end at the next boundary between blocks. The announced number of blocks is then
  /// filled up with 0xFF and closed with a wrong checksum, so that the chip rejects the image and takes
  /// commands again. Asked a second time, it ends there and the console says what the chip still expects. One
  /// that still waits for its turn is given up at once and sends nothing.
  void cancel();

  /// Cancels all that were begun and resumes when they are over. What is not after `patience` is stopped
  /// where it stands, and has a little more time to say what the chip still expects.
  Task<> end_all(std::chrono::milliseconds patience);

  /// Whether the chip still expects something of a transfer that is over, and the wire is kept for it.
  bool waiting() const { return waiting_.has_value(); }
  /// "FIRMWARE: the chip still expects 3 blocks of 256 bytes and a checksum"; only while waiting().
  std::string waiting_text() const;
  /// Sends what ends the chip's waiting. If that fails it goes on waiting.
  Task<> end_waiting();
  /// The chip waits no more: it was switched off, or is another one.
  void forget_waiting() { waiting_.reset(); }

  /// From the command letter to the end.
  bool running() const { return !current_.expired(); }

 private:
  /// A chip that is left waiting, and the wire for it.
  struct Waiting {
    CommandLink::Hold hold;
    TransferKind kind;
    ExpectedRest rest;
  };

  Task<TransferEnd> send_all(CommandLink::Hold& hold, std::shared_ptr<RunningTransfer> transfer);
  Task<bool> may_send_wrapped(std::string file, std::size_t size);
  Task<std::optional<CommandLink::Hold>> wait_for_hold(RunningTransfer& transfer);
  Task<TransferEnd> send_letter(CommandLink::Hold hold, std::shared_ptr<RunningTransfer> transfer);
  Task<std::optional<BlockImage>> ask_for_image(RunningTransfer& transfer);
  Task<> take_image(TransferKind kind, std::optional<BlockImage>& image, Resolver<bool> taken);
  Task<std::optional<BlockImage>> choose_image(TransferKind kind);
  Task<std::optional<BlockImage>> read_binary(std::filesystem::path path);
  Task<std::optional<BlockImage>> read_user_data(std::optional<std::filesystem::path> path);
  Task<bool> may_send(std::string oddity);
  Task<> warn(std::string text);
  Task<TransferEnd> send_image(CommandLink::Hold& hold, RunningTransfer& transfer, const BlockImage& image);
  Task<bool> is_lost(const RunningTransfer& transfer, JobResult sent);
  Task<TransferEnd> end_failed(const RunningTransfer& transfer, JobResult sent);
  Task<TransferEnd> end_cancelled(CommandLink::Hold& hold, RunningTransfer& transfer,
                                  std::size_t chunks_sent);

  CommandLink& link_;
  CQV5123Doc& document_;
  Prompts& prompts_;
  Background& background_;
  TransferView view_;
  std::weak_ptr<RunningTransfer> current_;
  std::optional<Waiting> waiting_;
  std::vector<std::weak_ptr<RunningTransfer>>
      begun_;  // by the order of their buttons; the first is the current one
};

}  // namespace qv5123
