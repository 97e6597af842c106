#include "cli/ctl_test.h"

namespace qv5123::test {
namespace {

using ReportCommand = CtlTest;

TEST_F(ReportCommand, WritesAReportAndEndsWithOneWhereALimitIsMissed) {
  copy_resource("sample.dat");
  std::ofstream(folder.path() / "limits.txt") << "values unlike file <= 100000\nmean color difference <= 2\n";
  const Result made = ctl({"--simulate", "report", "out.html", "--from", "sample.dat", "--firmware",
                           "sample.dat", "--limits", "limits.txt", "--serial", "<7>", "--json"});
  EXPECT_EQ(made.code, 1) << made.err;
  EXPECT_EQ(made.json()["missed"], nlohmann::json::array({"mean color difference"}));
  std::ifstream file(folder.path() / "out.html");
  const std::string html(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(html, testing::HasSubstr("&lt;7&gt;"));
  EXPECT_THAT(html, testing::HasSubstr("NOT MEASURED"));
  EXPECT_THAT(html, testing::HasSubstr("a_slope"));

  EXPECT_EQ(ctl({"--simulate", "report", "out.json"}).code, 0);
  std::ifstream json_file(folder.path() / "out.json");
  const auto json = nlohmann::json::parse(json_file);
  EXPECT_EQ(json["pages"].size(), 6u);
  EXPECT_EQ(json["gamma"]["R"].size(), 22u);

  std::ofstream(folder.path() / "limits.txt") << "\nrubbish\n";
  const Result refused = ctl({"--simulate", "report", "x.html", "--limits", "limits.txt"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.err, testing::HasSubstr("limits.txt: Line 2 is no limit: \"rubbish\""));
}

}  // namespace
}  // namespace qv5123::test
