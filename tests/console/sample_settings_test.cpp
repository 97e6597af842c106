#include <gtest/gtest.h>

#include "console/setting_file.h"
#include "simulator/chip_defaults.h"

namespace qv5123 {
namespace {

TEST(SampleSettings, AreTheTuningThatTheSimulatedChipStartsWith) {
  UserDataImage image;
  const FileResult read = read_setting_file(QV5123_SOURCE_DIR "/resources/sample.dat", image);
  ASSERT_TRUE(read.ok()) << read.text;
  EXPECT_EQ(image, factory_user_data());
}

}  // namespace
}  // namespace qv5123
