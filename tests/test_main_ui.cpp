#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Pages are driven without a display, and the build asks this program for its list of tests.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // No test may touch the settings of the user who runs it.
  QStandardPaths::setTestModeEnabled(true);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
