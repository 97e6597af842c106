#include <cstdlib>

#include "cli/ctl_test.h"

namespace qv5123::test {
namespace {

using ReportCommand = CtlTest;

TEST_F(ReportCommand, WritesAReportAndEndsWithOneWhereALimitIsMissed) {
  copy_resource("sample.dat");
  folder.write("limits.txt", "values unlike file <= 100000\nmean color difference <= 2\n");
  const Result made = ctl({"--simulate", "report", "out.html", "--from", "sample.dat", "--firmware",
                           "sample.dat", "--limits", "limits.txt", "--serial", "<7>", "--json"});
  EXPECT_EQ(made.code, 1) << made.err;
  EXPECT_EQ(made.json()["missed"], nlohmann::json::array({"mean color difference"}));
  const std::string html = folder.read("out.html");
  EXPECT_THAT(html, testing::HasSubstr("&lt;7&gt;"));
  EXPECT_THAT(html, testing::HasSubstr("a_slope"));

  std::string lens, field;
  for (int x = 16; x < 1920; x += 32)
    lens += std::to_string(x) + "," + std::to_string(200 - std::abs(x - 960) / 16) + ",180," +
            std::to_string(190 - std::abs(x - 960) / 8) + "\n";
  for (int place = 0; place < 45; ++place) field += place == 7 ? "200,200,180\n" : "200,200,198\n";
  folder.write("lens.csv", lens);
  folder.write("field.csv", field);
  EXPECT_EQ(ctl({"--simulate", "report", "out.json", "--lens", "lens.csv", "--field", "field.csv"}).code, 0);
  const auto json = nlohmann::json::parse(folder.read("out.json"));
  EXPECT_EQ(json["gamma"]["R"].size(), 22u);
  EXPECT_EQ(json["board"]["serial_number"], "QV5120042") << "as the chip tells";
  EXPECT_EQ(json["figures"]["field ripple"], 10);
  EXPECT_TRUE(json["figures"].contains("lens ripple"));

  const Result pdf = ctl({"--simulate", "report", "x.PDF"});
  EXPECT_EQ(pdf.code, 2);
  EXPECT_THAT(pdf.err, testing::HasSubstr("the window writes reports as PDF"));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "x.PDF"));

  folder.write("limits.txt", "\nrubbish\n");
  const Result refused = ctl({"--simulate", "report", "x.html", "--limits", "limits.txt"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.err, testing::HasSubstr("limits.txt: Line 2 is no limit: \"rubbish\""));

  const Result unread = ctl({"--simulate", "report", "x.html", "--journal", "gone.qvj"});
  EXPECT_EQ(unread.code, 2);
  EXPECT_THAT(unread.err, testing::HasSubstr("gone.qvj cannot be read."));
}

}  // namespace
}  // namespace qv5123::test
