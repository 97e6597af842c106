#pragma once

namespace qv5123 {

/// Whether somebody watches stderr as it comes.
bool stderr_is_terminal();

/// From now on a reader that has gone makes writes fail instead of ending the program.
void survive_closed_pipes();

}  // namespace qv5123
