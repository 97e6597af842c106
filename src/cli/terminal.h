#pragma once

namespace qv5123 {

/// Whether somebody watches stderr as it comes.
bool stderr_is_terminal();

/// Whether nobody will ever read what is written to stdout, where the system tells without a write.
bool stdout_reader_gone();

/// From now on a reader that has gone makes writes fail instead of ending the program, and nothing that is
/// opened takes the place of a standard stream that the program was started without.
void prepare_standard_streams();

}  // namespace qv5123
