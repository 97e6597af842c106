#include "content/flash_image.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

std::string counted(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 % 251);
  return bytes;
}

std::string erased(std::size_t size) {
  return std::string(size, '\xFF');
}

TEST(SerialFlashImage, EveryRegionStandsInItsPlaceAndTheRestIsErased) {
  // 2048 numbers, each the low 8 bits of 3 x its index: no piece looks like another.
  std::string user_text;
  std::string user;
  for (int i = 0; i < 2048; ++i) {
    user_text += std::to_string(3 * i) + "\n";
    user += static_cast<char>(3 * i);
  }
  const auto firmware = counted(1000);
  const auto font = counted(49152);
  const auto image = lay_out_flash({firmware, font, user_text + "99"});
  ASSERT_EQ(image.size(), 262144u);
  const auto region = [&image](std::size_t from, std::size_t to) { return image.substr(from, to - from); };
  EXPECT_EQ(region(0, 0x10000), firmware + erased(0x10000 - 1000));
  EXPECT_EQ(region(0x10000, 0x11000), user + erased(0x1000 - 2048));
  EXPECT_EQ(region(0x11000, 0x12000), user.substr(0, 177) + erased(0x1000 - 177));
  EXPECT_EQ(region(0x12000, 0x13000), user.substr(177, 285) + erased(0x1000 - 285));
  EXPECT_EQ(region(0x13000, 0x14000), user.substr(462, 454) + erased(0x1000 - 454));
  EXPECT_EQ(region(0x14000, 0x15000), user.substr(916, 899) + erased(0x1000 - 899));
  EXPECT_EQ(region(0x15000, 0x20000), user.substr(1815) + erased(0xB000 - 233));
  EXPECT_EQ(region(0x20000, 0x30000), font + erased(0x10000 - 49152));
  EXPECT_EQ(region(0x30000, 0x40000), firmware + erased(0x10000 - 1000));
}

TEST(SerialFlashFiles, FullRegionsFitUnreadableFilesStayErasedAndLargeOnesAreRefused) {
  const test::TemporaryFolder folder;
  const auto whole = counted(0x10000);
  const auto full = folder.write("full.bin", whole);
  const auto none = folder / "none.dat";
  EXPECT_EQ(build_flash_image({full, full, none}).image, whole + erased(0x10000) + whole + whole);
  const FlashBuild nothing = build_flash_image({folder.path(), none, none});
  EXPECT_EQ(nothing.image, erased(262144));
  EXPECT_EQ(nothing.remarks,
            (std::vector<std::string>{
                "fw file: Cannot read " + path_text(folder.path()) +
                    ": it is not a regular file. Erased: 0x00000 and 0x30000",
                "font file: Cannot read " + path_text(none) + ": No such file or directory. Erased: 0x20000",
                "user file: Cannot read " + path_text(none) +
                    ": No such file or directory. Erased: 0x10000 to 0x15000"}));
  const auto large = folder.write("large.bin", counted(0x10001));
  EXPECT_EQ(build_flash_image({full, large, full}).refusal,
            "font file too large: " + path_text(large) + " has 65537 bytes, the limit is 65536 bytes.");
  EXPECT_TRUE(build_flash_image({full, full, large}).ok());
}

}  // namespace
}  // namespace qv5123
