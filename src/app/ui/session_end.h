#pragma once

class QSessionManager;

namespace qv5123 {

/// The desktop session is about to end, and this program with it: asks for the time that its own end takes,
/// where the system would not leave it that.
void hold_session_end(QSessionManager& session);

}  // namespace qv5123
