#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // No test may touch the settings of the user who runs it.
  QStandardPaths::setTestModeEnabled(true);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
