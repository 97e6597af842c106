#pragma once

namespace qv5123 {

/// Lets what is printed reach the console that the program was started from. A window program of Windows has
/// none by itself; streams that are redirected stay as they are. Elsewhere there is nothing to do.
void use_parent_console();

}  // namespace qv5123
