#pragma once

#include <QApplication>
#include <QIcon>

namespace qv5123 {

/// The application: under these names its settings are stored.
class CQV5123App final : public QApplication {
 public:
  CQV5123App(int& argc, char** argv) : QApplication(argc, argv) {
    setOrganizationName(kOrganization);
    setApplicationName(kName);
    setApplicationVersion(QV5123_VERSION);
    setDesktopFileName("qv5123");
    setWindowIcon(QIcon(":/icons/qv5123.png"));
    // The port dialog may open and close before there is a main window; the main window ends the process
    // itself.
    setQuitOnLastWindowClosed(false);
  }

  static constexpr const char* kOrganization = "Kestrova";
  static constexpr const char* kName = "QV5123";
};

}  // namespace qv5123
