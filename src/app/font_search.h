#pragma once

#include <thread>

namespace qv5123 {

/// Begins to read the configuration of the system's font search on a thread of its own, which ends by itself.
/// The first text in a window waits for that; so it is done while the program connects to the window system.
/// No thread where the system's search is not one that reads files.
[[nodiscard]] std::jthread begin_font_search();

}  // namespace qv5123
