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

std::string numbers(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + "\r\n";
  return text;
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

TEST(SerialFlashImage, ShortUserDataRepeatsItsLastNumber) {
  const auto image = lay_out_flash({{}, {}, numbers(1024)});
  EXPECT_EQ(image[0x10000 + 300], '\x2C');
  EXPECT_EQ(image.substr(0x10000 + 1024, 1024), erased(1024)) << "1023 mod 256";
  const auto seven = lay_out_flash({{}, {}, std::string("7 x")});
  EXPECT_EQ(seven.substr(0x10000, 2048), std::string(2048, '\7'));
  EXPECT_EQ(seven.substr(0x15000, 233), std::string(233, '\7'));
  EXPECT_EQ(lay_out_flash({{}, {}, std::string()}).substr(0x10000, 2048), std::string(2048, '\0'));
}

TEST(SerialFlashFiles, FullRegionsFitAndUnreadableFilesStayErased) {
  const test::TemporaryFolder folder;
  const auto whole = counted(0x10000);
  const auto built = build_flash_image(
      {folder.write("fw.bin", whole), folder.write("font.bin", whole), folder / "none.dat"});
  ASSERT_TRUE(built.ok()) << built.refusal;
  EXPECT_EQ(built.image, whole + erased(0x10000) + whole + whole);
  const auto nothing = build_flash_image({folder.path(), folder / "none.bin", folder / "none.dat"});
  ASSERT_TRUE(nothing.ok());
  EXPECT_EQ(nothing.image, erased(262144));
}

TEST(SerialFlashFiles, AFileBeyondSixtyFourKibibytesIsRefusedWithSizeAndLimit) {
  const test::TemporaryFolder folder;
  const auto large = folder.write("large.bin", counted(0x10001));
  const auto small = folder.write("small.bin", "x");
  const std::string name = path_text(large);
  EXPECT_EQ(build_flash_image({large, small, small}).refusal,
            "fw file too large: " + name + " has 65537 bytes, the limit is 65536 bytes.");
  EXPECT_EQ(build_flash_image({small, large, small}).refusal,
            "font file too large: " + name + " has 65537 bytes, the limit is 65536 bytes.");
  EXPECT_TRUE(build_flash_image({small, small, large}).ok());
}

}  // namespace
}  // namespace qv5123
