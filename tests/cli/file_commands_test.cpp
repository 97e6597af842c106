#include "cli/ctl_test.h"
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
  const auto all = ctl({"settings", "show", "a.dat", "--json"}).json();
  EXPECT_EQ(all["entries"].size(), 1024u);
  EXPECT_EQ(all["values"]["awb.a_slope"], -205);
  EXPECT_EQ(ctl({"settings", "show", "a.dat", "version", "--json"}).json()["values"].size(), 9u);

  std::filesystem::copy_file(folder.path() / "a.dat", folder.path() / "b.dat");
  EXPECT_EQ(ctl({"settings", "diff", "a.dat", "b.dat"}).code, 0);
  EXPECT_EQ(ctl({"settings", "set", "b.dat", "awb.a_slope=17", "1000=0xFF", "version.sw[1]=42"}).code, 0);
  const auto diff = ctl({"settings", "diff", "a.dat", "b.dat"});
  EXPECT_EQ(diff.out, "awb.a_slope: -205 -> 17\nversion.sw[1]: 0 -> 42\n1000: 0 -> 255\n");
  EXPECT_EQ(diff.code, 1);

  const std::string before = folder.read("b.dat");
  const struct {
    const char* assignment;
    const char* complaint;
  } bad[] = {{"awb.a_slope=900", "awb.a_slope: 900 is beyond its range, it would count as -800"},
             {"7=256", "7: 256 is beyond its range, it would count as 0"},
             {"nobody=1", "No setting is named \"nobody\""},
             {"gamma.r=1", "\"gamma.r\" stands for 22 settings"},
             {"awb.a_slope", "\"awb.a_slope\" is not of the form NAME=VALUE"}};
  for (const auto& [assignment, complaint] : bad) {
    const auto result = ctl({"settings", "set", "b.dat", "0=1", assignment});
    EXPECT_EQ(result.err, std::string("qv5123ctl: ") + complaint + "\n");
    EXPECT_EQ(result.code, 2);
  }
  EXPECT_EQ(folder.read("b.dat"), before);
}

TEST_F(CtlTest, SettingsChecked) {
  copy_resource("sample.dat");
  EXPECT_EQ(ctl({"settings", "check", "sample.dat"}).out, "sample.dat: ok\n");
  UserDataImage image;
  image.set_word(181, 900);
  folder.write("odd.dat", setting_text(image) + "7\r\n300\r\nx\r\n");
  const auto odd = ctl({"settings", "check", "odd.dat", "--json"});
  EXPECT_EQ(odd.code, 1);
  EXPECT_FALSE(odd.json()["ok"]);
  EXPECT_THAT(ctl({"settings", "check", "odd.dat"}).out,
              StartsWith("odd.dat: line 1026: \"300\" is not in 0..255\n"
                         "odd.dat: line 1027: \"x\" is no decimal number; what follows is not read\n"
                         "odd.dat: it has 1027 numbers instead of 1024\n"));
  EXPECT_THAT(
      odd.out,
      HasSubstr("awb.a_slope: 181=3 182=132 is beyond its range, its page would make it 181=252 182=224"));
}

TEST_F(CtlTest, FlashImages) {
  copy_resource("sample.dat");
  folder.write("fw.bin", std::string(300, '\x01'));
  folder.write("font.bin", std::string(49152, '\x02'));
  EXPECT_EQ(
      ctl({"flash", "make", "--fw", "fw.bin", "--font", "font.bin", "--user", "sample.dat", "-o", "image"})
          .out,
      "image: 262144 bytes\n");
  const auto inspected = ctl({"flash", "inspect", "image", "--json"});
  EXPECT_EQ(inspected.code, 0);
  EXPECT_EQ(inspected.json()["regions"][0]["used"], 300);
  EXPECT_THAT(
      ctl({"flash", "inspect", "image"}).out,
      testing::EndsWith("The two copies of the firmware agree\nThe two copies of the user data agree\n"));
  std::string image = folder.read("image");
  image[flash::kSecondFirmwareOffset] = '\x07';
  image[flash::kUserOffset + 5 * flash::kSectorSize + 232] ^= 1;
  folder.write("broken", image);
  const auto broken = ctl({"flash", "inspect", "broken"});
  EXPECT_THAT(broken.out, HasSubstr("firmware differ\nThe two copies of the user data differ\n"));
  EXPECT_EQ(broken.code, 1);

  folder.write("large.bin", std::string(65537, 'x'));
  const auto large = ctl(
      {"flash", "make", "--fw", "large.bin", "--font", "font.bin", "--user", "sample.dat", "-o", "image"});
  EXPECT_EQ(large.err,
            "qv5123ctl: fw file too large: large.bin has 65537 bytes, the limit is 65536 bytes.\n");
  EXPECT_EQ(ctl({"flash", "inspect", "fw.bin"}).err,
            "qv5123ctl: fw.bin has 300 bytes, a flash image has 262144\n");
}

TEST_F(CtlTest, Fonts) {
  copy_resource("fontT_16x24_.bin");
  EXPECT_EQ(ctl({"font", "export", "fontT_16x24_.bin", "-o", "font.txt"}).out, "font.txt: 1024 glyphs\n");
  EXPECT_EQ(ctl({"font", "import", "font.txt", "-o", "again.bin"}).code, 0);
  const auto diff = ctl({"font", "diff", "fontT_16x24_.bin", "again.bin", "--json"}).json()["differences"];
  for (const auto& glyph : diff) {
    EXPECT_NE(glyph["a"][0], glyph["b"][0]) << "the import loses first rows, and nothing else";
    EXPECT_EQ(glyph["a"][1], glyph["b"][1]);
  }
  EXPECT_EQ(ctl({"font", "diff", "fontT_16x24_.bin", "fontT_16x24_.bin"}).code, 0);
  const auto shown = ctl({"font", "show", "fontT_16x24_.bin", "0x41", "66", "--json"}).json();
  EXPECT_EQ(shown[1]["glyph"], 66);
  EXPECT_EQ(shown[0]["rows"].size(), 24u);
  EXPECT_THAT(ctl({"font", "show", "fontT_16x24_.bin", "65"}).out, StartsWith("glyph 65 (0x041)\n----"));
}

TEST_F(CtlTest, Computations) {
  const auto points = ctl({"gamma", "compute", "--gamma", "0.45", "--itu709", "--json"}).json()["points"];
  EXPECT_EQ(points.get<GammaCurve>(), end_gamma_curve(0.45, true, 16));
  // A camera that sees the references as they are, at 200 counts for white.
  std::string patches = "R,G,B\n";
  for (const LinearRgb& colour : kPatchReferences) {
    for (std::size_t c = 0; c < 3; ++c) {
      patches +=
          std::to_string(static_cast<int>(std::max(0.0, colour[c]) * 200 + 1)) + (c < 2 ? "," : "\r\n");
    }
  }
  folder.write("patches.csv", patches);
  const auto matrix = ctl({"matrix", "fit", "patches.csv", "--json"}).json();
  EXPECT_NEAR(matrix["coefficients"][1][1], 1, 0.1);
  EXPECT_EQ(matrix["patches"].size(), 24u);
  EXPECT_LT(matrix["after"]["mean"], 1);
  EXPECT_THAT(ctl({"matrix", "fit", "patches.csv", "--ratio", "0"}).out,
              StartsWith("R: 1.000000 0.000000 0.000000 0x0400 0x0000 0x0000\n"));

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
  EXPECT_THAT(ctl({"lsc", "fit", "samples.csv"}).out, StartsWith("centre: 9"));

  folder.write("three.csv", "1,2,3\n4,5,6\n7,8\n");
  EXPECT_EQ(ctl({"matrix", "fit", "three.csv"}).err,
            "qv5123ctl: three.csv, line 3: 3 numbers expected, not 2\n");
  folder.write("dark.csv", "16,0,1,1\n");
  EXPECT_EQ(ctl({"lsc", "fit", "dark.csv"}).err, "qv5123ctl: dark.csv, line 1: 0 is not in 1..255\n");
  folder.write("few.csv", "16,1,1,1\n");
  EXPECT_EQ(ctl({"lsc", "fit", "few.csv"}).code, 1);
}

/// Each on a chip of its own, which forgets what was done to it.
TEST_F(CtlTest, CommandsToASimulatedChip) {
  for (const char* name : {"sample.dat", "regu.xml"}) copy_resource(name);
  folder.write("two.txt", "0xFA0A=0x77 //GAIN_MAX_H\r\n0xF123=0x01 //UNKNOWN\r\n");
  folder.write("script.txt", "922,5A");
  folder.write("font.bin", std::string(300, 'f'));
  const struct {
    std::vector<std::string> command;
    const char* field;
    nlohmann::json value;
  } cases[] = {
      {{"reg", "read", "0xF922"}, "/0/address", 0xF922},
      {{"reg", "write", "--wide", "0x922", "0x5A5A"}, "/sent", 1},
      {{"reg", "dump", "0xF922", "0xF923"}, "/1/address", 0xF923},
      {{"reg", "save", "regs.txt", "--category", "Sensor interface"}, "/registers", 14},
      {{"reg", "load", "two.txt"}, "/registers", 2},
      {{"send", "0x01", "0"}, "/sent", 1},
      {{"osd", "pattern", "1"}, "/sent", 1},
      {{"factory-reset", "--yes"}, "/sent", 1},
      {{"info", "awb"}, "/fields/task", "running"},
      {{"page", "show", "awb"}, "/values/awb.a_slope", -205},
      {{"page", "save", "lsc", "--from", "sample.dat", "--verify"}, "/verified", 6},
      {{"page", "diff", "gamma", "sample.dat"}, "/compared", 88},
      {{"download", "font", "font.bin", "--expect", "checksum ok"}, "/expected", true},
      {{"script", "script.txt"}, "/writes", 1},
  };
  for (const auto& [command, field, value] : cases) {
    std::vector<std::string> all{"--simulate", "--json"};
    all.insert(all.end(), command.begin(), command.end());
    const auto result = ctl(all);
    const nlohmann::json json = result.json();
    const nlohmann::json::json_pointer pointer(field);
    EXPECT_TRUE(json.contains(pointer) && json.at(pointer) == value) << field << " of " << result.out;
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(CtlTest, BadInputIsNamedInOneLine) {
  folder.write("short.bin", "x");
  folder.write("large.bin", std::string(65281, 'x'));
  folder.write("empty", "");
  folder.write("script.txt", "922,5A\r\n\r\n92x,5A\r\n");
  folder.write("font.txt", "0x0F, 0xF0,     // ----########----0\r\n\r\nfont\r\n");
  const struct {
    std::vector<std::string> command;
    std::string complaint;
  } cases[] = {
      {{},
       "A command is missing; qv5123ctl has ports, reg, send, osd, factory-reset, copy-to-factory, info, "
       "page, "
       "settings, download, script, monitor, flash, font, gamma, matrix, lsc"},
      {{"reg", "rede"}, "No command is named \"rede\"; reg has read, write, save, load, list, dump"},
      {{"ports", "--bogus"}, "The following argument was not expected: --bogus"},
      {{"reg", "read", "--bogus"}, "The following argument was not expected: --bogus"},
      {{"ports", "--timeout", "0"}, "--timeout: 0 is not in 1..3600000"},
      {{"reg", "read", "--simulate"}, "ADDR is required"},
      {{"reg", "read", "010z", "--simulate"}, "ADDR: \"010z\" is no number (0x hex or decimal)"},
      {{"reg", "read", "0x10000", "--simulate"}, "ADDR: 0x10000 is not in 0..65535"},
      {{"reg", "read", "0x5922", "--simulate"},
       "ADDR: 0x5922 is no register of the ISP; they are 0x000..0xFFF, also written 0xF000..0xFFFF"},
      {{"reg", "read", "1"}, "This command talks to the chip: --port DEVICE or --simulate says where it is"},
      {{"reg", "read", "1", "--wide", "--sensor"}, "--wide excludes --sensor"},
      {{"reg", "write", "1", "2", "3", "--simulate"}, "ADDR 0x03 has no VALUE"},
      {{"reg", "write", "1", "0x100", "--simulate"}, "VALUE: 0x100 is not in 0..255"},
      {{"reg", "dump", "2", "1", "--simulate"}, "END 0x0001 lies before START 0x0002"},
      {{"reg", "list"}, "Can't find regu.xml!"},
      {{"reg", "list", "--description", "x.xml"}, "Cannot read the description x.xml"},
      {{"osd", "pattern", "2", "--simulate"}, "N: 2 is not in 0..1"},
      {{"factory-reset", "--simulate"}, "--yes is required"},
      {{"page", "show", "lens", "--simulate"},
       "No page is named \"lens\"; the pages are front, awb, dynamic, gamma, matrix, lsc"},
      {{"page", "save", "awb", "--simulate"}, "--from is required"},
      {{"settings", "show", "none.dat"}, "Cannot read none.dat: No such file or directory"},
      {{"download", "fw", "none.bin", "--simulate"}, "Cannot read none.bin: No such file or directory"},
      {{"download", "fw", "large.bin", "--simulate"},
       "large.bin has 65281 bytes, a download takes 1 to 65280"},
      {{"download", "user", "empty", "--simulate"}, "empty holds no settings"},
      {{"script", "script.txt", "--simulate"}, "script.txt, line 3: not of the form \"AAA,DD\""},
      {{"script", "empty", "--simulate"}, "empty has no register to write"},
      {{"reg", "load", "empty", "--simulate"}, "empty has no register"},
      {{"reg", "save", "x", "--description", "script.txt", "--simulate"},
       "script.txt describes no registers"},
      {{"reg", "read", "1", "--simulate", "--trace", "no/trace"}, "Cannot write no/trace"},
      {{"font", "show", "short.bin", "1"}, "short.bin has 1 bytes, a font library has 49152"},
      {{"font", "import", "short.bin", "-o", "out.bin"},
       "short.bin, line 1: not of the form \"0x0F, 0xF0,     // ----########----\""},
      {{"font", "import", "font.txt", "-o", "out.bin"},
       "font.txt, line 3: not of the form \"0x0F, 0xF0,     // ----########----\""},
      {{"gamma", "compute", "--gamma", "0"}, "--gamma: 0 is not above 0"},
      {{"gamma", "compute", "--gamma", "1,5"}, "--gamma: \"1,5\" is no number"},
      {{"matrix", "fit", "short.bin"}, "short.bin has 0 patches instead of 24"},
      {{"matrix", "fit", "short.bin", "--ratio", "101"}, "--ratio: 101 is not in 0..100"},
  };
  for (const auto& [command, complaint] : cases) {
    const auto result = ctl(command);
    EXPECT_EQ(result.err, "qv5123ctl: " + complaint + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.code, 2);
  }
}

TEST_F(CtlTest, HelpOnEveryLevelAndTheVersion) {
  EXPECT_THAT(ctl({"--help"}).out, HasSubstr("\nCommands:\n  ports "));
  EXPECT_THAT(ctl({"reg", "--help"}).out, HasSubstr("  dump "));
  EXPECT_THAT(ctl({"reg", "read", "--help"}).out, HasSubstr("ADDR ... REQUIRED"));
  EXPECT_EQ(ctl({"--version"}).out, "qv5123ctl " QV5123_VERSION "\n");
  EXPECT_EQ(ctl({"ports", "--json"}).json().type(), nlohmann::json::value_t::array);
}

TEST_F(CtlTest, ManualPageAndCompletionAreThoseOfTheProgram) {
  EXPECT_EQ(ctl({"man"}).out, test::source_file("docs/qv5123ctl.1")) << "qv5123ctl man >docs/qv5123ctl.1";
  EXPECT_EQ(ctl({"bash-completion"}).out, test::source_file("completions/qv5123ctl.bash"))
      << "qv5123ctl bash-completion >completions/qv5123ctl.bash";
}

}  // namespace
}  // namespace qv5123
