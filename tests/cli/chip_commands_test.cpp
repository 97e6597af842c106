// The commands that talk to a chip, wherever programs can be given a line between them.
#include <gmock/gmock.h>

#include <map>

#include "cli/ctl_test.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(CtlTest, RegistersOfEveryKind) {
  plug_in();
  EXPECT_EQ(on_board({"reg", "write", "0xF922", "0x5A", "2339", "7"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "0xF922", "0x923"}).out, "0xF922 = 0x5A\n0xF923 = 0x07\n");
  EXPECT_EQ(on_board({"reg", "read", "--wide", "0xF922", "--json"}).json()[0]["value"], 23047);
  EXPECT_EQ(on_board({"reg", "write", "--sensor", "0x3012", "0x1234"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "--sensor", "0x3012"}).out, "0x3012 = 0x1234\n");
  EXPECT_EQ(on_board({"reg", "dump", "0xF922", "0xF923"}).out, "\n0xF922 = 0x5A\n0xF923 = 0x07\n");
  EXPECT_EQ(on_board({"send", "0x92", "9", "0x92", "0x22", "0x93", "0x11"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "0xF922"}).out, "0xF922 = 0x11\n");
  EXPECT_EQ(on_board({"reg", "write", "--wide", "0xF922", "0x5A07"}).code, 0);
  EXPECT_THAT(board->expect("@9607*"),
              AllOf(HasSubstr("@9709*\n@9722*\n"), HasSubstr("@9830*\n@9812*\n"),
                    HasSubstr("@9b09*\n@9b22*\n@9b09*\n@9b23*\n"), HasSubstr("@9509*\n@9522*\n@965a*\n")))
      << "twelve bits of an ISP address are sent";
}

TEST_F(CtlTest, ASlowChipsValuesStayWithTheirRegisters) {
  plug_in({"--latency", "300"});
  EXPECT_EQ(on_board({"reg", "write", "0x801", "1", "0x802", "2", "0x803", "3"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "0x801", "0x802", "0x803"}).out,
            "0xF801 = 0x01\n0xF802 = 0x02\n0xF803 = 0x03\n");
}

TEST_F(CtlTest, RegisterFilesNamesAndChecks) {
  copy_resource("regu.xml");
  EXPECT_EQ(ctl({"reg", "list", "--find", "gain_max_h"}).out,
            "Auto exposure  0xFA0A  GAIN_MAX_H  [7:0] HIGH\n");
  std::string odd = folder.read("regu.xml");
  odd[odd.find(std::string("G\0A\0I\0N\0_\0M\0A\0X\0_\0H", 19))] = '\x9B';
  folder.write("odd.xml", odd);
  EXPECT_THAT(ctl({"--json", "reg", "list", "--description", "odd.xml", "--find", "ain_max_h"}).out,
              HasSubstr("\"\\u009bAIN_MAX_H\""));

  plug_in();
  EXPECT_EQ(on_board({"reg", "save", "regs.txt", "--category", "Auto exposure"}).code, 0);
  EXPECT_THAT(folder.read("regs.txt"), HasSubstr("\r\n0xFA0A="));

  folder.write("two.txt", "0xFA0A=0x77 //GAIN_MAX_H\r\n0xF123=0x01 //UNKNOWN\r\n");
  EXPECT_EQ(on_board({"reg", "load", "two.txt"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "0xFA0A", "0xF123"}).out, "0xFA0A = 0x77\n0xF123 = 0x01\n");

  folder.write("bad.txt", "0xFA0A=0x77 //GAIN_MAX_H\r\nnonsense\r\n");
  EXPECT_EQ(on_board({"reg", "load", "bad.txt"}).err,
            "qv5123ctl: bad.txt, line 2: not of the form \"0xF800=0x1A //NAME\"\n");

  EXPECT_EQ(on_board({"reg", "write", "0xFA0A", "0x5A"}).code, 0);
  EXPECT_EQ(on_board({"reg", "read", "gain_max_h", "GAIN_MAX_H.HIGH", "0xA0A"}).out,
            "gain_max_h = 0x5A\nGAIN_MAX_H.HIGH = 0x5A\n0xFA0A = 0x5A\n");
  EXPECT_EQ(on_board({"reg", "read", "GAIN_MIX"}).err,
            "qv5123ctl: The description has no register \"GAIN_MIX\"\n");
  folder.write("expected.txt", "0xFA0A=0x5A //GAIN_MAX_H\r\n\n# bits\nGAIN_MAX_H & 0xF0 = 0x50\n");
  EXPECT_EQ(on_board({"reg", "check", "expected.txt"}).err, "2 registers equal\n");
  folder.write("wrong.txt", "GAIN_MAX_H&0x0F=0x0B\n");
  const auto wrong = on_board({"reg", "check", "wrong.txt"});
  EXPECT_EQ(wrong.out, "GAIN_MAX_H: chip 0x0A, expected 0x0B, mask 0x0F\n");
  EXPECT_EQ(wrong.code, 1);
  folder.write("unfit.txt", "0xFA0A=0x5A\n0xFA0A&0x0F=0x5A\n");
  EXPECT_EQ(on_board({"reg", "check", "unfit.txt"}).err,
            "qv5123ctl: unfit.txt, line 2: \"0x5A\" is beyond its bits\n");
}

TEST_F(CtlTest, ButtonsOfTheForm) {
  plug_in();
  using Words = std::vector<std::string>;
  for (const auto& [command, frame] : std::map<Words, std::string>{{{"osd", "set"}, "@0104*"},
                                                                   {{"osd", "pattern", "1"}, "@c901*"},
                                                                   {{"copy-to-factory", "--yes"}, "@bf00*"},
                                                                   {{"factory-reset", "--yes"}, "@93cc*"}}) {
    EXPECT_EQ(on_board(command).code, 0);
    EXPECT_THAT(board->expect(frame), EndsWith(frame));
  }
  EXPECT_THAT(on_board({"info", "ae"}).out, StartsWith("AE\n task: running\n"));
}

TEST_F(CtlTest, PagesShowSaveAndDiffAndBecomeAFile) {
  copy_resource("sample.dat");
  plug_in();
  EXPECT_EQ(ctl({"settings", "set", "sample.dat", "lsc.parameter1.g=1111", "awb.a_slope=-300"}).code, 0);
  EXPECT_EQ(on_board({"page", "save", "lsc", "--from", "sample.dat", "--verify"}).err,
            "lsc: saving, 10 flushes\nlsc: 6 values read back agree\n");
  const auto equal = on_board({"page", "diff", "lsc", "sample.dat"});
  EXPECT_EQ(equal.code, 0);
  EXPECT_EQ(equal.out, "");
  EXPECT_EQ(equal.err, "lsc: equal, 6 values compared\n");
  EXPECT_THAT(on_board({"page", "show", "lsc"}).out, HasSubstr("\nlsc.parameter1.g = 1111\n"));

  EXPECT_EQ(on_board({"page", "save", "awb", "--from", "sample.dat"}).code, 0);
  EXPECT_EQ(on_board({"send", "0x0D", "0", "0x0D", "100"}).code, 0);
  const auto changed = on_board({"page", "diff", "awb", "sample.dat"});
  EXPECT_EQ(changed.out, "awb.a_slope: chip 100, file -300\n");
  EXPECT_EQ(changed.code, 1);

  const auto all = on_board({"page", "diff", "all", "sample.dat", "--json"});
  EXPECT_EQ(all.json()["pages"].size(), 6U);
  EXPECT_THAT(all.err,
              HasSubstr("front: not compared, since the chip or the file does not tell: front.delay, "));
  EXPECT_THAT(on_board({"page", "show", "all"}).out,
              AllOf(StartsWith("front."), HasSubstr("\nmatrix."), HasSubstr("\nlsc.")));

  EXPECT_EQ(on_board({"settings", "read", "-o", "chip.dat", "--base", "sample.dat"}).code, 0);
  EXPECT_EQ(ctl({"settings", "show", "chip.dat", "awb.a_slope"}).out, "awb.a_slope = 100\n");
  EXPECT_EQ(on_board({"page", "diff", "all", "chip.dat"}).code, 0);
  EXPECT_EQ(on_board({"settings", "read", "-o", "lsc.dat", "--pages", "lsc"}).code, 0);
  EXPECT_EQ(ctl({"settings", "show", "lsc.dat", "awb.a_slope"}).out, "awb.a_slope = 0\n");
  EXPECT_EQ(on_board({"settings", "read", "-o", "x.dat", "--pages", "lcs"}).code, 2);
}

TEST_F(CtlTest, Measures) {
  plug_in({"--scene", "flat", "--noise", "off"});
  const auto awb = on_board({"awb", "measure", "--json"});
  EXPECT_EQ(awb.code, 0) << awb.err;
  EXPECT_GT(awb.json()["r"], 0);
  const auto crossed = on_board({"matrix", "measure", "--corners", "0,0", "9,9", "9,0", "0,9"});
  EXPECT_EQ(crossed.code, 2);
  EXPECT_EQ(crossed.err, "qv5123ctl: --corners: these do not go round a chart\n");
  // No chart is there.
  const auto flat =
      on_board({"matrix", "measure", "--corners", "360,180", "1560,180", "1560,900", "360,900"});
  EXPECT_EQ(flat.code, 1);
  EXPECT_THAT(flat.err, HasSubstr(" is out of order: its brightness does not fit that of "));
  EXPECT_EQ(on_board({"reg", "read", "0xFA20"}).out, "0xFA20 = 0x90\n") << "the picker is off";
}

TEST_F(CtlTest, Downloads) {
  folder.write("fw.bin", std::string(1000, 'f'));
  copy_resource("sample.dat");
  plug_in({});
  const auto firmware = on_board({"download", "fw", "fw.bin", "--expect", "checksum ok"});
  EXPECT_EQ(firmware.code, 0) << firmware.err;
  EXPECT_EQ(firmware.out, "");
  EXPECT_THAT(firmware.err, HasSubstr("Firmware: 4 blocks received, checksum ok\n"));
  EXPECT_THAT(firmware.err, testing::Not(HasSubstr("\r"))) << "progress is for terminals";
  EXPECT_EQ(on_board({"download", "user", "sample.dat", "--quiet", "--expect", "ok"}).out, "");
  const auto unexpected =
      on_board({"download", "fw", "fw.bin", "--expect", "hooray", "--timeout", "300", "--quiet"});
  EXPECT_EQ(unexpected.code, 1);
  EXPECT_EQ(unexpected.err, "qv5123ctl: The chip did not say \"hooray\"\n");
}

TEST_F(CtlTest, TracesEveryByteAndSimulatesByItself) {
  EXPECT_EQ(ctl({"--simulate", "--trace", "trace.txt", "reg", "read", "0xF922"}).out, "0xF922 = 0x00\n");
  const std::string trace = folder.read("trace.txt");
  EXPECT_THAT(trace, HasSubstr(" > 40 39 34 30 39 2a 40 39 34 32 32 2a |@9409*@9422*|\n"));
  EXPECT_THAT(trace, HasSubstr(" < 7e 30 30 5e |~00^|\n"));
  EXPECT_EQ(ctl({"--simulate", "--trace", "trace.txt", "reg", "read", "0xF922"}).code, 0);
  const std::string both = folder.read("trace.txt");
  EXPECT_EQ(both.rfind(trace, 0), 0u) << "it goes on";
  EXPECT_THAT(both.substr(trace.size()), AllOf(StartsWith("# 20"), HasSubstr("|~00^|\n")));
  EXPECT_THAT(ctl({"--simulate", "--trace=-", "reg", "read", "0xF922"}).err, HasSubstr("@9409*@9422*|\n"));
}

}  // namespace
}  // namespace qv5123
