#include "app/ui/qv5123_app.h"

#include <QIcon>

namespace qv5123 {

CQV5123App::CQV5123App(int& argc, char** argv) : QApplication(argc, argv) {
  setOrganizationName(kOrganization);
  setApplicationName(kName);
  setApplicationVersion(QV5123_VERSION);
  setDesktopFileName("qv5123");
  setWindowIcon(QIcon(":/icons/qv5123.png"));
  // The port dialog may open and close before there is a main window; the main window ends the process
  // itself.
  setQuitOnLastWindowClosed(false);
}

}  // namespace qv5123
