#include "simulator/simulated_chip.h"

#include <gtest/gtest.h>

#include <string>

#include "console/setting_file.h"
#include "simulator/chip_defaults.h"
#include "support/chip_talk.h"
#include "support/source_folder.h"

using namespace qv5123;
using namespace std::chrono_literals;

namespace {

/// A chip that is spoken to in text and whose announcement has been heard out.
class Chip : public testing::Test {
 protected:
  std::string ask(std::string_view bytes) { return test::ask(chip, bytes); }
  int entry(std::size_t index) const { return chip.state().user_data.entry(index); }
  int word(std::size_t index) const { return chip.state().user_data.word(index); }

  test::ListeningChip chip;
};

std::string repeated(std::string_view part, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

}  // namespace

TEST(ChipStart, IsWithTheTuningOfTheSampleSettings) {
  const ReadSettings read = read_setting_file(test::source_folder() / "resources/sample.dat");
  ASSERT_TRUE(read.result.ok()) << read.result.text;
  EXPECT_EQ(read.image, factory_user_data());
}

TEST(ChipStart, AnnouncesItselfWithVersionAndSerialNumber) {
  SimulatedChip chip;
  chip.power_on();
  const auto bytes = chip.take_output();
  const std::string output(bytes.begin(), bytes.end());
  // Version digits HW 01 00 02, SW 02 03 02, ISP 05 12 23, then "QV5120042".
  EXPECT_NE(output.find("~000100000002000200030002000501020203515635313230303432^"), std::string::npos)
      << output;
}

TEST_F(Chip, WideAccessWrapsAndADumpRefusesBackwardRanges) {
  ask("@950f*@95ff*@96aa*@96bb*");
  EXPECT_EQ(chip.isp(0xFFF), 0xAA);
  EXPECT_EQ(chip.isp(0x000), 0xBB);
  EXPECT_EQ(ask("@97ff*@97ff*"), "~aabb^") << "only the low 12 bits of an address count";

  ask("@9209*@9222*@9312*");
  ask("@9209*@9223*@93ab*");
  EXPECT_EQ(ask("@9b09*@9b22*@9b09*@9b23*"), "\r\n0xF922 = 0x12\r\n0xF923 = 0xAB\r\n");
  EXPECT_EQ(ask("@9b09*@9b23*@9b09*@9b22*"), "\r\ndump: 0xF922 lies before 0xF923\r\n");
}

TEST_F(Chip, HalfAnAddressReachesNothing) {
  ask("@9201*@9200*@9355*");
  ask("@9202*@9377*");  // the low byte was lost on the line
  EXPECT_EQ(chip.isp(0x100), 0x55);
  EXPECT_EQ(ask("@9401*"), "");
  chip.line_quiet(29ms);
  EXPECT_EQ(ask("@9400*"), "~55^");
  EXPECT_EQ(ask("@9402*"), "");
  chip.line_quiet(30ms);
  EXPECT_EQ(ask("@9401*@9400*"), "~55^") << "after silence a request stands on its own";
}

TEST_F(Chip, FindsFramesAmongAnything) {
  EXPECT_EQ(ask("\x01hello@@37\xff@374x*@3@3711*zz"), "");
  EXPECT_EQ(chip.state().frames, 1u);
  EXPECT_EQ(chip.direct(0x37), 0x11);
  EXPECT_EQ(ask("@37"), "");
  EXPECT_EQ(ask("2A*"), "");
  EXPECT_EQ(chip.direct(0x37), 0x2A) << "a frame may come in pieces and in uppercase";
}

TEST_F(Chip, LatchesWordsPointByPointAndSelectionsThatDoNotExistSelectNothing) {
  const int before = word(133);
  ask("@0501*");
  EXPECT_EQ(word(133), before) << "half a point changes nothing";
  ask("@0523*@0502*@0534*");
  EXPECT_EQ(word(133), 0x123);
  EXPECT_EQ(word(135), 0x234);
  ask("@0600*" + repeated("@0300*@0307*", 22) + "@0301*@0300*");
  EXPECT_EQ(word(45), 0x100) << "the 23rd point is the first again";

  ask("@4e02*@5177*");
  EXPECT_EQ(entry(380), 2) << "the register says the kind of the record";
  ask("@ca03*@4103*");
  const UserDataImage selected = chip.state().user_data;
  ask("@ca04*@5901*@5901*@4e03*@5b01*@4f01*@4107*@4201*");
  EXPECT_EQ(chip.state().user_data, selected);
}

TEST_F(Chip, KeepsOnlyWhatIsBracketedAndFactoryResetBringsBackWhatWasCopied) {
  ask("@3750*@fa01*@3851*@fa00*@3952*");
  EXPECT_EQ(entry(285), 0x50);
  chip.power_on();
  EXPECT_EQ(entry(285), 40);
  EXPECT_EQ(chip.direct(0x38), 0x51);
  ask("");
  EXPECT_EQ(ask("@bf00*"), "\r\nuser data copied to factory data\r\n");
  ask("@3811*");
  EXPECT_EQ(ask("@9209*@9222*@93cc*"), "\r\nfactory data restored\r\n");
  EXPECT_EQ(chip.direct(0x38), 0x51);
}

TEST_F(Chip, InfoIsTextAndABlockThatNobodyFindsWaiting) {
  ask("@a000*@3a21*");
  const std::string ae = ask("@a201*");
  EXPECT_NE(ae.find("task: stopped\r\n target: 33\r\n"), std::string::npos) << ae;
  EXPECT_EQ(ae.substr(ae.find('~')), "~00212104281020^$");
}

TEST_F(Chip, KeepsAnImageWhoseChecksumFits) {
  // One block of 0x01 .. 0x00: the XOR over all byte values is 0, the header's 1 remains.
  std::string block;
  for (int i = 1; i <= 256; ++i) block += static_cast<char>(i & 0xFF);
  using namespace std::string_literals;
  EXPECT_EQ(ask("A\x01\0"s + block + "\x01"), "\r\nFirmware: 1 block received, checksum ok\r\n");
  EXPECT_EQ(ask("A\x02\0"s + block + block + "\x03"),
            "\r\nFirmware: 2 blocks received, checksum wrong (0x03, expected 0x02), old image kept\r\n");
  EXPECT_EQ(chip.state().firmware.size(), 256u);
  const std::string big = repeated(block, 255);
  EXPECT_EQ(ask("C\xff\0"s + big + "\xff"), "\r\nFont: 255 blocks received, checksum ok\r\n");
  EXPECT_EQ(chip.state().font.size(), 65280u);
}

TEST_F(Chip, TakesUserDataAsItsSettings) {
  using namespace std::string_literals;
  std::string image(1024, '\0');
  image[285] = 'x';
  ask("U\x04\0"s);
  ask(image);
  EXPECT_EQ(ask(std::string(1, 4 ^ 'x')), "\r\nUser data: 4 blocks received, checksum ok\r\n");
  EXPECT_EQ(chip.direct(0x37), 'x');
  EXPECT_EQ(chip.state().kept_data.entry(285), 'x');
}

TEST_F(Chip, GivesUpATransferThatDoesNotCome) {
  using namespace std::string_literals;
  EXPECT_EQ(ask("A@3712*"), "\r\nFirmware: no image came\r\n");
  EXPECT_EQ(chip.direct(0x37), 0x12) << "the frame that came instead counts";
  ask("A");
  chip.line_quiet(1h);
  EXPECT_TRUE(chip.transfer_open()) << "somebody is still choosing a file";
  ask("\x03\0"s);
  ask(std::string(600, 'x'));
  chip.line_quiet(2s);
  EXPECT_EQ(ask(""), "\r\nFirmware: given up after 2 of 3 blocks, old image kept\r\n");
  EXPECT_EQ(ask("@940a*@9420*"), "~90^");
}

TEST_F(Chip, StartsWithTheRegistersStoredInFlash) {
  const auto page = [](int command, int first) {
    std::string text = "@dc00*@dd00*";
    text += frame({0xDE, static_cast<std::uint8_t>(first)}) + repeated("@de00*", 255);
    return text + frame({static_cast<std::uint8_t>(command), 0});
  };
  ask(page(0xDF, 0x01));  // only the first address is valid
  ask(page(0xE0, 0x5A));
  const int next = chip.isp(0x801);
  chip.power_on();
  EXPECT_EQ(chip.isp(0x800), 0x5A);
  EXPECT_EQ(chip.isp(0x801), next);
}
