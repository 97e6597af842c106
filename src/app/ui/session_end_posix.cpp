#include "app/ui/session_end.h"

namespace qv5123 {

// The session waits for its programs by itself.
void hold_session_end(QSessionManager&) {}

}  // namespace qv5123
