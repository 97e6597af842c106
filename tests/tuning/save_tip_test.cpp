#include "tuning/save_tip.h"

#include <gtest/gtest.h>

#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

TEST(SaveTip, TellsFilePagesAndRegistersOfEachPagesSave) {
  const auto registers = [](const char* page) { return saved_registers(make_model(page)->fields()); };
  EXPECT_EQ(registers("lsc"), "registers 0x64 and 0x65");
  EXPECT_EQ(registers("matrix"), "registers 0x52 to 0x5A");
  EXPECT_EQ(registers("awb"), "registers 0x0D to 0x16");
  EXPECT_EQ(
      save_tip(make_model("lsc")->fields(), SavedFile::all_pages, "/home/me/board.dat"),
      "Writes the values of all open pages but ISPTune to the setting file board.dat and sends 6 values "
      "for the chip to keep, registers 0x64 and 0x65");
  EXPECT_EQ(save_tip(make_model("lsc")->fields(), SavedFile::own, {}).substr(0, 61),
            "Writes this page's values to a setting file that you choose a");
  EXPECT_EQ(save_tip(make_model("lsc")->fields(), SavedFile::none, "board.dat"),
            "Sends 6 values for the chip to keep, registers 0x64 and 0x65. Writes no file: \"Save File...\" "
            "does");
}

}  // namespace
}  // namespace qv5123
