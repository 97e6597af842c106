#include <gmock/gmock.h>
#include <map>

#include "cli/ctl_test.h"
#include "cli/files.h"
#include "console/setting_file.h"
#include "content/flash_image.h"
#include "tuning/gamma_curve.h"
#include "tuning/patch_chart.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(CtlTest, Settings) {
  UserDataImage image;
  image.set_word(181, -205);
  image.set_word(55, 300);  // the red curve's sixth point
  image.set_entry(1023, 9);
  folder.write("a.dat", setting_text(image));
  EXPECT_EQ(ctl({"settings", "show", "a.dat", "awb.a_slope", "181", "0x3FF", "gamma.r[5]"}).out,
            "awb.a_slope = -205\n181 = 255\n1023 = 9\ngamma.r[5] = 300\n");
  EXPECT_EQ(ctl({"settings", "show", "a.dat", "--json"}).json()["values"]["awb.a_slope"], -205);

  std::filesystem::copy_file(folder.path() / "a.dat", folder.path() / "b.dat");
  EXPECT_EQ(ctl({"settings", "set", "b.dat", "awb.a_slope=17", "1000=0xFF", "version.sw[1]=42"}).code, 0);
  const auto diff = ctl({"settings", "diff", "a.dat", "b.dat"});
  EXPECT_EQ(diff.out, "awb.a_slope: -205 -> 17\nversion.sw[1]: 0 -> 42\n1000: 0 -> 255\n");
  EXPECT_EQ(diff.code, 1);

  const std::string before = folder.read("b.dat");
  for (const auto& [assignment, complaint] : std::map<std::string, std::string>{
           {"awb.a_slope=900", "awb.a_slope: 900 is beyond its range, it would count as 800"},
           {"nobody=1", "No setting is named \"nobody\""},
           {"gamma.r=1", "\"gamma.r\" stands for 22 settings"}})
    EXPECT_EQ(ctl({"settings", "set", "b.dat", "0=1", assignment}).err, "qv5123ctl: " + complaint + "\n");
  EXPECT_EQ(folder.read("b.dat"), before);
}

TEST_F(CtlTest, SettingsChecked) {
  UserDataImage image;
  image.set_word(181, 900);
  folder.write("odd.dat", setting_text(image) + "7\r\n300\r\nx\r\n");
  const auto odd = ctl({"settings", "check", "odd.dat"});
  EXPECT_EQ(odd.code, 1);
  EXPECT_THAT(odd.out, StartsWith("odd.dat: line 1026: \"300\" is not in 0..255\n"
                                  "odd.dat: line 1027: \"x\" is no decimal number; what follows is not read\n"
                                  "odd.dat: more than 1024 numbers, the rest is not read\n"
                                  "odd.dat: awb.a_slope: 181=3 182=132 is beyond its range, its page would "
                                  "make it 181=3 182=32\n"));
}

TEST_F(CtlTest, AFileThatIsNo1024NumbersIsRefusedUnlessLenient) {
  copy_resource("sample.dat");
  folder.write("regs.txt", "0x0000=0x12 //R\r\n");
  folder.write("bin", std::string(300, '\x01'));
  const std::string refusal =
      "qv5123ctl: regs.txt: 1 number of 1024, the rest repeats 0 (line 1: \"0x0000=0x12\" is no decimal "
      "number)\n";
  const std::vector<std::vector<std::string>> commands = {
      {"settings", "set", "regs.txt", "0=1"},
      {"page", "save", "lsc", "--from", "regs.txt", "--simulate"},
      {"page", "diff", "lsc", "regs.txt", "--simulate"},
      {"download", "user", "regs.txt", "--simulate"},
      {"flash", "make", "--fw", "bin", "--font", "bin", "--user", "regs.txt", "-o", "image"}};
  for (const std::vector<std::string>& command : commands) {
    const auto refused = ctl(command);
    EXPECT_EQ(refused.code, 2) << command[1];
    EXPECT_EQ(refused.err, refusal);
  }
  EXPECT_EQ("qv5123ctl: " + ctl({"settings", "show", "regs.txt", "0"}).err, refusal)
      << "a look at it is only warned of";

  std::vector<std::string> lenient = commands.back();
  lenient.push_back("--lenient");
  EXPECT_EQ(ctl(lenient).code, 0);
  EXPECT_EQ(ctl({"download", "user", "regs.txt", "--simulate", "--lenient"}).code, 0);
  EXPECT_EQ(ctl({"settings", "set", "regs.txt", "0=1", "--lenient"}).code, 0);
  EXPECT_EQ(folder.read("regs.txt").substr(0, 6), "1\r\n0\r\n");
  folder.write("long.dat", folder.read("regs.txt") + folder.read("regs.txt"));
  std::vector<std::string> whole = commands.back();
  whole[7] = "long.dat";
  EXPECT_EQ(ctl(whole).code, 0) << "the image has room for twice as many";
}

TEST_F(CtlTest, SettingsSetAtTheSameTimeAreAllKept) {
  copy_resource("sample.dat");
  std::vector<std::unique_ptr<test::Program>> programs;
  for (int entry = 1000; entry < 1008; ++entry)
    programs.push_back(start({"settings", "set", "sample.dat", std::to_string(entry) + "=77"}));
  for (const auto& program : programs) EXPECT_EQ(program->end(), 0);
  for (int entry = 1000; entry < 1008; ++entry)
    EXPECT_EQ(ctl({"settings", "show", "sample.dat", std::to_string(entry)}).out,
              std::to_string(entry) + " = 77\n");
  EXPECT_EQ(folder.size(), 1);
}

TEST_F(CtlTest, FlashImages) {
  copy_resource("sample.dat");
  folder.write("fw", std::string(300, '\x01'));
  folder.write("font", std::string(49152, '\x02'));
  EXPECT_EQ(ctl({"flash", "make", "--fw", "fw", "--font", "font", "--user", "sample.dat", "-o", "image"}).err,
            "image: 262144 bytes\n");
  EXPECT_EQ(ctl({"flash", "inspect", "image", "--json"}).json()["regions"][0]["used"], 300);
  std::string image = folder.read("image");
  folder.write("no-font",
               std::string(image).replace(flash::kFontOffset, 0x10000, std::string(0x10000, '\xFF')));
  const auto no_font = ctl({"flash", "inspect", "no-font"});
  EXPECT_THAT(no_font.out, HasSubstr("No font: erased\n"));
  EXPECT_EQ(no_font.code, 1);
  image[flash::kSecondFirmwareOffset] = '\x07';
  image[flash::kUserOffset + 5 * flash::kSectorSize + 232] ^= 1;
  folder.write("broken", image);
  const auto broken = ctl({"flash", "inspect", "broken"});
  EXPECT_THAT(broken.out, HasSubstr("firmware differ\nThe two copies of the user data differ\n"));
  EXPECT_EQ(broken.code, 1);
}

TEST_F(CtlTest, Fonts) {
  copy_resource("fontT_16x24_.bin");
  EXPECT_EQ(ctl({"font", "export", "fontT_16x24_.bin", "-o", "font.txt"}).err, "font.txt: 1024 glyphs\n");
  EXPECT_EQ(ctl({"font", "import", "font.txt", "-o", "again.bin"}).code, 0);
  const auto diff = ctl({"font", "diff", "fontT_16x24_.bin", "again.bin", "--json"}).json()["differences"];
  for (const auto& glyph : diff) {
    EXPECT_NE(glyph["a"][0], glyph["b"][0]) << "the import loses first rows, and nothing else";
    EXPECT_EQ(glyph["a"][1], glyph["b"][1]);
  }
  EXPECT_THAT(ctl({"font", "show", "fontT_16x24_.bin", "65"}).out, StartsWith("glyph 65 (0x041)\n----"));
}

TEST_F(CtlTest, Computations) {
  const auto points = ctl({"gamma", "compute", "--gamma", "0.45", "--itu709", "--json"}).json()["points"];
  EXPECT_EQ(points.get<GammaCurve>(), end_gamma_curve(0.45, true, 16));
  // A camera that sees the references as they are, at 200 counts for white.
  std::string patches = "R,G,B\n";
  for (const LinearRgb& colour : kPatchReferences)
    for (std::size_t c = 0; c < 3; ++c)
      patches +=
          std::to_string(static_cast<int>(std::max(0.0, colour[c]) * 200 + 1)) + (c < 2 ? "," : "\r\n");
  folder.write("patches.csv", patches);
  const auto matrix = ctl({"matrix", "fit", "patches.csv", "--json"}).json();
  EXPECT_NEAR(matrix["coefficients"][1][1], 1, 0.1);
  EXPECT_LT(matrix["after"]["mean"], 1);

  std::string samples;
  for (int x = 16; x < 1920; x += 32) {
    const double d2 = (x - 960) / 2048.0 * (x - 960) / 2048.0;
    const std::string level = std::to_string(static_cast<int>(200 / (1 + 1.2 * d2)));
    samples += std::to_string(x) + ", " + level + ", " + level + ", " + level + "\n";
  }
  folder.write("samples.csv", samples);
  const auto lens = ctl({"lsc", "fit", "samples.csv", "--json"}).json();
  EXPECT_NEAR(lens["centre"], 960, 10);
  EXPECT_NEAR(lens["parameter1"][0], 1.2 * 1024, 200);
}

/// Each on a chip of its own, which forgets what was done to it.
TEST_F(CtlTest, CommandsToASimulatedChip) {
  folder.write("script.txt", "922,5A");
  folder.write("font.bin", std::string(300, 'f'));
  const auto simulated = [this](std::vector<std::string> command) {
    command.insert(command.end(), {"--simulate", "--json"});
    return ctl(command).json();
  };
  EXPECT_EQ(simulated({"download", "font", "font.bin", "--expect", "checksum ok"})["expected"], true);
  EXPECT_EQ(simulated({"script", "script.txt"})["writes"], 1);
}

TEST_F(CtlTest, BadInputIsNamedInOneLine) {
  folder.write("two.csv", "7,8\n");
  folder.write("odd.csv", "1,2,3\n\x1b]\xC2\x9B" + std::string(50, 'x') + ",2,3\n");
  folder.write("script.txt", "922,5A\r\n\r\n92x,5A\r\n");
  folder.write("font.txt", "0x0F, 0xF0,     // ----########----0\r\n\r\nfont\r\n");
  const struct {
    std::vector<std::string> command;
    std::string complaint;
  } cases[] = {
      {{},
       "A command is missing; qv5123ctl has ports, reg, send, osd, factory-reset, copy-to-factory, info, "
       "page, param, settings, download, script, replay, report, monitor, flash, font, gamma, matrix, lsc, "
       "awb, provision, records"},
      {{"reg", "rede"},
       "No command is named \"rede\"; reg has read, write, save, load, list, check, dump. Did you mean "
       "\"read\"?"},
      {{"--port", "line", "--parity", "most", "osd", "up"},
       "--parity most is not of: none, odd, even, mark or space (default none)"},
      {{"--simulate", "--baud", "9600", "osd", "up"}, "--baud requires --port"},
      {{"reg", "read", "--bogus"}, "The following argument was not expected: --bogus"},
      {{"reg", "read", "010z", "--simulate"}, "ADDR: \"010z\" is no number (0x hex or decimal)"},
      {{"reg", "read", "0x5922", "--simulate"},
       "ADDR: 0x5922 is no register of the ISP; they are 0x000..0xFFF, also written 0xF000..0xFFFF"},
      {{"reg", "read", "1"}, "This command talks to the chip: --port DEVICE or --simulate says where it is"},
      {{"reg", "dump", "2", "1", "--simulate"}, "END 0x0001 lies before START 0x0002"},
      {{"factory-reset", "--simulate"}, "--yes is required"},
      {{"page", "show", "lens", "--simulate"},
       "No page is named \"lens\"; the pages are front, awb, dynamic, gamma, matrix, lsc"},
      {{"matrix", "fit", "two.csv"}, "two.csv, line 1: 3 numbers expected, not 2"},
      {{"matrix", "fit", "odd.csv"},
       R"(odd.csv, line 2: "\x1b]\x9bxxxxxxxxxxxxxxxx...xxxxxxxxxxxxxxxxxxxx" is no number (0x hex or decimal))"},
      {{"settings", "show", "none.dat"}, "Cannot read none.dat: No such file or directory"},
      {{"records", "summary", std::string(300, 'x')}, "Cannot read " + std::string(300, 'x')},
      {{"replay", "script.txt", "--dry-run"},
       "script.txt, line 1: neither hex pairs such as \"9209 93cc\" nor \"wait MS\""},
      {{"script", "script.txt", "--simulate"}, "script.txt, line 3: not of the form \"AAA,DD\""},
      {{"reg", "read", "1", "--simulate", "--trace", "no/trace"}, "Cannot write no/trace"},
      {{"font", "import", "font.txt", "-o", "out.bin"},
       "font.txt, line 3: not of the form \"0x0F, 0xF0,     // ----########----\""},
  };
  for (const auto& [command, complaint] : cases) {
    const auto result = ctl(command);
    EXPECT_EQ(result.err, "qv5123ctl: " + complaint + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.code, 2);
  }
}

TEST_F(CtlTest, HelpVersionManualPageAndCompletionAreThoseOfTheProgram) {
  EXPECT_THAT(ctl({"--help"}).out, HasSubstr("\nCommands:\n  ports "));
  EXPECT_THAT(ctl({"reg", "read", "--help"}).out, HasSubstr("ADDR ... REQUIRED"));
  EXPECT_EQ(ctl({"ports", "--json"}).json().type(), nlohmann::json::value_t::array);
  EXPECT_EQ(ctl({"--version"}).out, "qv5123ctl " QV5123_VERSION "\n");
  const auto source = test::source_folder();
  EXPECT_EQ(ctl({"man"}).out, read_file(source / "docs/qv5123ctl.1")) << "qv5123ctl man >docs/qv5123ctl.1";
  EXPECT_EQ(ctl({"bash-completion"}).out, read_file(source / "completions/qv5123ctl.bash"))
      << "qv5123ctl bash-completion >completions/qv5123ctl.bash";
}

}  // namespace
}  // namespace qv5123
