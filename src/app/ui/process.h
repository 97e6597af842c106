#pragma once

#include <QStringList>
#include <thread>

class QSessionManager;

// What a process of this program does differently on each system, as it starts and as it ends.
namespace qv5123 {

/// Lets what is printed reach the console that the program was started from. A window program of Windows has
/// none by itself; streams that are redirected stay as they are. Elsewhere there is nothing to do.
void use_parent_console();

/// The command line of this process, every byte and character of it: paths come out of to_path() as they
/// were. The application object must exist.
QStringList program_arguments(int argc, char** argv);

/// Begins to read the configuration of the system's font search on a thread of its own, which ends by itself.
/// The first text in a window waits for that; so it is done while the program connects to the window system.
/// No thread where the system's search is not one that reads files.
[[nodiscard]] std::jthread begin_font_search();

/// The desktop session is about to end, and this program with it: asks for the time that its own end takes,
/// where the system would not leave it that.
void hold_session_end(QSessionManager& session);

}  // namespace qv5123
