#include "cli/ctl_test.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;
using testing::Not;

TEST_F(CtlTest, ParamListsNamesWithAllThatIsTrueOfThem) {
  EXPECT_EQ(ctl({"param", "list", "lsc.*.g"}).out,
            "lsc.parameter1.g: Parameter-1 GREEN, 0..4095 (1024 is 1.0), register 0x64\n"
            "lsc.parameter2.g: Parameter-2 GREEN, 0..4095 (1024 is 1.0), register 0x65\n");
  EXPECT_EQ(ctl({"param", "list", "front.flag.g?mma", "front.flag.ae_task"}).out,
            "front.flag.gamma: Gamma, 0..1, register 0x84, in no file\n"
            "front.flag.ae_task: AE Task, 0..1, register 0xA0, in no file, not reported\n");
  EXPECT_EQ(ctl({"--simulate", "param", "get", "dynamic.ir_led"}).out, "dynamic.ir_led = 0\n")
      << "not those that begin so";
  const auto one = ctl({"param", "list", "front.video_mode", "--json"}).json()[0];
  EXPECT_EQ(one["entries"], nlohmann::json({454}));
  EXPECT_GT(one["items"].size(), 1u);
  EXPECT_EQ(ctl({"param", "list", "gamma.x*"}).err,
            "qv5123ctl: No value is named \"gamma.x*\"; \"param list\" has all names\n");
}

TEST_F(CtlTest, ParamGoesBetweenChipAndFile) {
  copy_resource("sample.dat");
  plug_in();
  EXPECT_EQ(on_board({"param", "set", "lsc.parameter1.*=700", "awb.a_slope=-12", "--verify", "--json"})
                .json()["verified"],
            5)
      << "and the intercept that the control of the slope sends";
  EXPECT_EQ(on_board({"param", "get", "lsc.parameter1", "awb.a_slope"}).out,
            "awb.a_slope = -12\nlsc.parameter1.r = 700\nlsc.parameter1.g = 700\nlsc.parameter1.b = 700\n");
  EXPECT_EQ(on_board({"param", "diff", "sample.dat", "lsc.parameter1.r"}).code, 1);

  EXPECT_EQ(ctl({"param", "set", "lsc.parameter1=700", "--to", "sample.dat"}).code, 0);
  EXPECT_EQ(ctl({"param", "get", "lsc.parameter1.b", "--from", "sample.dat", "--json"}).json()["values"],
            nlohmann::json({{"lsc.parameter1.b", 700}}));
  EXPECT_EQ(on_board({"param", "diff", "sample.dat", "lsc.parameter1"}).code, 0);
  copy_resource("regu.xml");
  std::filesystem::copy_file(folder.path() / "sample.dat", folder.path() / "other.dat");
  EXPECT_EQ(ctl({"param", "set", "front.delay=9", "--to", "other.dat"}).code, 0);
  EXPECT_THAT(ctl({"param", "diff", "sample.dat", "--with", "other.dat"}).out,
              testing::AllOf(testing::StartsWith("front.delay: a "), testing::EndsWith(", b 9\n")));
}

TEST_F(CtlTest, ParamSetSendsWhatThePagesOwnControlSendsAndSaysWhatIsNotReported) {
  plug_in();
  EXPECT_EQ(on_board({"param", "set", "lsc.parameter1.r=1", "lsc.parameter1.g=2", "lsc.parameter1.b=0x304",
                      "--json"})
                .json()["sent"],
            1);
  EXPECT_THAT(board->expect("@6404*"), HasSubstr("@6400*\n")) << "the trace has a line for each frame";

  const auto refused = [this](const std::vector<std::string>& words) {
    auto all = words;
    all.insert(all.begin(), {"param", "set"});
    const auto result = on_board(all);
    EXPECT_EQ(result.code, 2);
    return result.err;
  };
  EXPECT_EQ(refused({"lsc.parameter1.r=4096"}),
            "qv5123ctl: lsc.parameter1.r: 4096 is beyond 0..4095 (1024 is 1.0), register 0x64\n");
  EXPECT_EQ(refused({"awb.patch1.r=1"}),
            "qv5123ctl: awb.patch1.r: nothing sends it alone; \"page save\" sends the whole page\n");
  EXPECT_THAT(refused({"dynamic.dpc_decision=7"}), HasSubstr("--base FILE says where to take that from"));
  copy_resource("sample.dat");
  EXPECT_EQ(on_board({"param", "set", "dynamic.dpc_decision=7", "--base", "sample.dat"}).code, 0);

  const auto set = on_board({"param", "set", "matrix.cvbs.light2.r[0]=0x123", "--verify"});
  EXPECT_EQ(set.code, 0) << set.err;
  EXPECT_EQ(set.err, "3 values read back agree\n") << "the row";
  const std::string sent = board->expect("@5801*\n@5823*");
  EXPECT_THAT(sent, HasSubstr("@ca03*\n"));
  EXPECT_THAT(sent, Not(HasSubstr("@52"))) << "the red row of another light";

  const auto none = on_board({"param", "set", "front.flag.ae_task=1", "--verify"});
  EXPECT_EQ(none.code, 2);
  EXPECT_EQ(none.err, "qv5123ctl: --verify: the chip reports none of these values\n");
  const auto some =
      on_board({"param", "set", "front.flag.ae_task=1", "awb.a_slope=5", "awb.a_slope=7", "--verify"});
  EXPECT_EQ(some.code, 0);
  EXPECT_EQ(some.err, "1 value not reported by the chip\n2 values read back agree\n");
}

TEST_F(CtlTest, WhatPageShowPrintsGoesIntoASettingFile) {
  copy_resource("sample.dat");
  for (const std::string page : {"front", "awb", "dynamic", "gamma", "matrix", "lsc"}) {
    const auto values = ctl({"--simulate", "page", "show", page, "--json"}).json()["values"];
    std::vector<std::string> words{"settings", "set", "sample.dat"};
    for (const auto& [name, number] : values.items()) words.push_back(name + "=" + number.dump());
    const auto set = ctl(words);
    EXPECT_EQ(set.code, 0) << set.err;
    EXPECT_EQ(ctl({"--simulate", "page", "diff", page, "sample.dat"}).code, 0) << page;
  }
  const auto flag = ctl({"settings", "set", "sample.dat", "front.flag.gamma=1", "--json"});
  EXPECT_EQ(flag.err, "front.flag.gamma: no setting file holds it, left out\n");
  EXPECT_EQ(flag.json()["set"], 0);
}

TEST_F(CtlTest, ReplaySendsAScriptAsItStands) {
  folder.write("script.regs", "# a remark\n9209 9222 93cc\nwait 120\n0100 # up\n");
  const auto dry = ctl({"replay", "script.regs", "--dry-run"});
  EXPECT_EQ(dry.out, "9209 9222 93cc\nwait 120\n0100\n");
  EXPECT_EQ(dry.err, "# 4 registers in 2 flushes, at least 220 ms; nothing was sent\n");
  plug_in();
  EXPECT_EQ(on_board({"replay", "script.regs", "--json", "--trace", "trace"}).json()["writes"], 4);
  EXPECT_THAT(folder.read("trace"),
              testing::AllOf(HasSubstr("|@9209*@9222*@93cc*|\n"), HasSubstr("|@0100*|\n")));
}

}  // namespace
}  // namespace qv5123
