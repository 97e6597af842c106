#pragma once

#include <QApplication>
#include <QIcon>
#include <QLocale>

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
    // Texts are English, and numbers are what the chip's documents and setting files have: Latin digits, in
    // whatever language the desktop is.
    QLocale::setDefault(QLocale::c());
    // The port dialog may open and close before there is a main window; the main window ends the process
    // itself.
    setQuitOnLastWindowClosed(false);
  }

  static constexpr const char* kOrganization = "Kestrova";
  static constexpr const char* kName = "QV5123";
};

}  // namespace qv5123
