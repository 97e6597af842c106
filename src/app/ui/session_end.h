#pragma once

#include <functional>

class QObject;

namespace qv5123 {

/// Calls `end` when the desktop session is about to end and this program with it, for as long as `owner`
/// lives. The session is asked to wait where it would not by itself. The application object must exist.
void end_with_session(QObject& owner, std::function<void()> end);

}  // namespace qv5123
