#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "console/document.h"
#include "console/prompts.h"
#include "link/command_link.h"

namespace qv5123 {

enum class TransferKind {
  firmware,  ///< "FW"
  font,      ///< "FONT"
  user_data  ///< "System"
};

/// What a transfer shows while it goes on. All are called on the scheduler's thread; none may be empty.
struct TransferView {
  std::function<void(int)> set_progress;                       ///< the bar's position, 0..100
  std::function<void(const std::string&)> show_progress_text;  ///< amount, speed and time left; may be empty
  std::function<void(const std::string&)> append_console;
};

/// Sends image files to the chip: command letter, file chosen by the user, blocks, checksum. From the letter
/// to the end nothing else reaches the wire; what others send meanwhile waits its turn.
class ImageTransfer {
 public:
  static constexpr std::size_t kImageLimit = 65536;

  ImageTransfer(CommandLink& link, CQV5123Doc& document, Prompts& prompts, TransferView view);
  ~ImageTransfer();
  ImageTransfer(const ImageTransfer&) = delete;
  ImageTransfer& operator=(const ImageTransfer&) = delete;

  /// One transfer from its button to its end. Waits for transfers that were begun before.
  Task<> run(TransferKind kind);

  /// Asks the transfer to end at the next boundary between blocks. The announced number of blocks is then
  /// filled up with 0xFF and closed with a wrong checksum, so that the chip rejects the image and takes
  /// commands again. Asked a second time, it ends there and the console says what the chip still expects.
  void cancel();

  /// From the command letter to the end.
  bool running() const;

 private:
  class Transfer;
  CommandLink& link_;
  CQV5123Doc& document_;
  Prompts& prompts_;
  TransferView view_;
  std::shared_ptr<Transfer> current_;
};

}  // namespace qv5123
