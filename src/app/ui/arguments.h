#pragma once

#include <QStringList>

namespace qv5123 {

/// The command line of this process, every byte and character of it: paths come out of to_path() as they
/// were. The application object must exist.
QStringList program_arguments(int argc, char** argv);

}  // namespace qv5123
