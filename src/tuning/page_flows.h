#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/task.h"
#include "console/page_host.h"
#include "link/register_write.h"

/// What the tuning pages do alike: read their settings back from the chip, and save them on it.
namespace qv5123 {

/// A page's read-back.
struct PageLoad {
  std::uint8_t trigger = 0;  ///< a write of 0 to it asks for the reply
  std::string failed;        ///< status text when no reply came, or one that is damaged or ended too early
  std::string loaded;        ///< status text otherwise; none when empty
  /// Takes the reply's characters, hex digits all; false when they end too early, and then nothing may have
  /// changed.
  std::function<bool(std::string_view reply)> take;
};

/// Asks the chip and hands the reply to the page. True when the page took it.
Task<bool> load_from_chip(DeskHost& host, PageLoad load);

/// Traffic that takes a while: a page's full save, or all of its values at once.
struct LongTraffic {
  Traffic traffic;
  std::string done;                       ///< status text at the end; none when empty
  std::chrono::milliseconds settling{0};  ///< how long the chip stores afterwards and gets nothing else
  std::shared_ptr<const WriteNote> note;  ///< what it is about; may be null
};

/// Sends the traffic as one job with progress in the status bar, and waits while the chip stores. Closing the
/// window asks meanwhile. False, and said in the status bar, when the port failed, cut a write short or
/// was away before the chip had stored all.
Task<bool> send_with_progress(DeskHost& host, LongTraffic sending);

/// Status text at the end of a save on file and chip of which no file was written.
inline constexpr char kSavedOnChipOnly[] = "Only the chip was saved: no setting file was written.";

}  // namespace qv5123
