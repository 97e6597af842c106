#include <cstdlib>

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

  std::ofstream lens(folder.path() / "lens.csv"), field(folder.path() / "field.csv");
  for (int x = 16; x < 1920; x += 32)
    lens << x << "," << 200 - std::abs(x - 960) / 16 << ",180," << 190 - std::abs(x - 960) / 8 << "\n";
  for (int place = 0; place < 45; ++place) field << "200,200," << (place == 7 ? 180 : 198) << "\n";
  lens.close();
  field.close();
  EXPECT_EQ(ctl({"--simulate", "report", "out.json", "--lens", "lens.csv", "--field", "field.csv"}).code, 0);
  std::ifstream json_file(folder.path() / "out.json");
  const auto json = nlohmann::json::parse(json_file);
  EXPECT_EQ(json["pages"].size(), 6u);
  EXPECT_EQ(json["gamma"]["R"].size(), 22u);
  EXPECT_EQ(json["board"]["serial_number"], "QV5120042") << "as the chip tells";
  EXPECT_EQ(json["figures"]["field ripple"], 10);
  EXPECT_TRUE(json["figures"].contains("lens ripple"));

  const Result pdf = ctl({"--simulate", "report", "x.PDF"});
  EXPECT_EQ(pdf.code, 2);
  EXPECT_THAT(pdf.err, testing::HasSubstr("the window writes reports as PDF"));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "x.PDF"));

  std::ofstream(folder.path() / "limits.txt") << "\nrubbish\n";
  const Result refused = ctl({"--simulate", "report", "x.html", "--limits", "limits.txt"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.err, testing::HasSubstr("limits.txt: Line 2 is no limit: \"rubbish\""));
}

}  // namespace
}  // namespace qv5123::test
