#include "base/ui/qt_text.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(QtText, PathsComeBackAsTheyWere) {
  for (const char8_t* name : {u8"board.dat", u8"Größe 設定/файл.dat", u8"\U0001F4F7.dat", u8"\uFFFD.dat"}) {
    const std::filesystem::path path(name);
    EXPECT_EQ(to_path(path_to_qt(path)), path);
  }
  if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
    for (const char* bytes : {"\xFF", "a\xE4.dat", "\xC3", "\xE8\xA8x\xF0\x9F\x93\xB7", "\xEF\xBF\xBD\x80"}) {
      EXPECT_EQ(
          to_path(native_to_qt(std::string(bytes))).native().compare(std::filesystem::path(bytes).native()),
          0)
          << bytes;
    }
  }
}

}  // namespace
}  // namespace qv5123
