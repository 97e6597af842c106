#include "state/sign_off.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "state/sign_off_values.h"
#include "support/chart_readings.h"
#include "support/desk_bench.h"
#include "tuning/awb_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"
#include "tuning/matrix_fit.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(Limits, AreReadLineByLineAndTellWhatIsNone) {
  const Limits found = read_limits(
      "# all boards\r\n"
      "mean colour difference <= 2\n"
      "  lsc.parameter1.r, 100, 2000  # worst batch\n"
      "a, b, , 5\n"
      "Field Ripple >= 1\n"
      "\n"
      "nothing\nx, , \ny <= two\n, 1, 2");
  ASSERT_EQ(found.limits.size(), 4u);
  EXPECT_EQ(found.limits[2].name, "a, b");
  EXPECT_FALSE(found.limits[2].low);
  EXPECT_THAT(found.faults,
              ElementsAre("Line 7 is no limit: \"nothing\"", "Line 8 is no limit: \"x, ,\"",
                          "Line 9 is no limit: \"y <= two\"", "Line 10 is no limit: \", 1, 2\""));

  const auto met =
      judged(found.limits, {{"mean color difference", 2}, {"lsc.parameter1.r", 99}, {"field ripple", NAN}});
  EXPECT_TRUE(met[0].met) << "whatever spelling";
  EXPECT_FALSE(met[1].met);
  EXPECT_FALSE(met[2].met) << "what nobody measured";
  EXPECT_FALSE(met[3].met) << "what is no number";
}

/// A report with something of everything, and with texts that would be markup.
SignOff full_report() {
  SignOff report;
  report.program = "program";
  report.port = "<port> & \"co\"";
  report.serial_number = "A\x01</td><script>";
  report.serial_typed = "B";
  report.versions = {{"HW", "1.2.3", "1.2.4"}};
  report.notes = "'line'\n</body>\xC3(\xED\xA0\x80\xF4\x90\xC3\xA9";
  report.pages = {{"awb",
                   "AWBTune",
                   {{"a_slope", "A Slope", 5, 5, 6, "verified", 5, true},
                    {"b_slope", "B Slope", 1, {}, 1, ""},
                    {"patch1.r", "Dark skin R", 1, {}, 1, kNeverReported}}}};
  const MeasuredColours measured = test::chart_readings("chart-metameric");
  report.measured = measured;
  report.chart = patch_report(measured, fit_matrix(measured, 100)->coefficients);
  report.chart_of = "TVI, Outdoor";
  for (const int x : lens_positions(1920)) report.lens.samples.push_back(lens_sample(x, {200, 100, 50}));
  report.field.assign(45, PerColour{200, 200, 200});
  report.field[3] = {100, 200, 200};
  report.gamma.emplace();
  report.awb.emplace();
  report.files = {sign_off_file("Setting file", "a&b.dat", "abc")};
  report.limits = judged(read_limits("awb.a_slope, 0, 4\nunverified values <= 1\nno such, 1, 2").limits,
                         figures_of(report));
  return report;
}

TEST(SignOffReport, EscapesWhatCameFromElsewhereAndHasNoOutsideParts) {
  const std::string html = sign_off_html(full_report());
  EXPECT_THAT(html, HasSubstr("&lt;port&gt; &amp; &quot;co&quot;"));
  EXPECT_THAT(html, HasSubstr("A\xEF\xBF\xBD&lt;/td&gt;&lt;script&gt;"));
  EXPECT_THAT(html,
              HasSubstr("&#39;line&#39;<br>\n&lt;/body&gt;\uFFFD(\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u00E9</p>"));
  EXPECT_THAT(html, HasSubstr("<b>B</b>")) << "not what the chip tells";
  EXPECT_THAT(html, HasSubstr("<b>1.2.3, File 1.2.4</b>"));
  for (const char* outside : {"<script", "http:", "https:", "src=", "href=", "url("})
    EXPECT_THAT(html, Not(HasSubstr(outside)));
  EXPECT_THAT(html, HasSubstr("Limits: 2 of 3 missed"));
  EXPECT_THAT(html, HasSubstr("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
  std::size_t pictures = 0;
  for (std::size_t at = 0; (at = html.find("<svg ", at)) != std::string::npos; ++at) ++pictures;
  EXPECT_EQ(pictures, 5u);

  SignOff empty;
  EXPECT_THAT(sign_off_html(empty), HasSubstr("Signature"));
  EXPECT_THAT(sign_off_html(empty), Not(HasSubstr("<svg")));
}

TEST(SignOffReport, SaysTheSameAsJson) {
  const auto json = nlohmann::json::parse(sign_off_json(full_report()));
  EXPECT_EQ(json["port"], "<port> & \"co\"");
  EXPECT_EQ(json["board"]["serial_number"], "A\x01</td><script>");
  EXPECT_EQ(json["pages"][0]["values"]["a_slope"]["file"], 6);
  EXPECT_TRUE(json["pages"][0]["values"]["b_slope"]["chip"].is_null());
  EXPECT_EQ(json["limits"][0]["value"], 5);
  EXPECT_FALSE(json["limits"][0]["met"]);
  EXPECT_TRUE(json["limits"][1]["met"]) << "what the chip never reports is not counted";
  EXPECT_EQ(json["board"]["versions"]["HW"]["file"], "1.2.4");
  EXPECT_EQ(json["pages"][0]["values"]["a_slope"]["caption"], "A Slope");
  EXPECT_TRUE(json["pages"][0]["values"]["a_slope"]["unlike_file"]);
  ASSERT_EQ(json["chart"]["patches"].size(), 24u);
  for (const char* part : {"counts", "measured", "corrected"})
    EXPECT_EQ(json["chart"]["patches"][23][part].size(), 3u) << part;
  EXPECT_TRUE(json["chart"]["on_chip"]);
  EXPECT_EQ(json["lens"]["width"], 1920);
  EXPECT_EQ(json["awb_patches"].size(), kAwbPatchCount);
  EXPECT_EQ(json["figures"]["field ripple"], 100);
  EXPECT_EQ(json["figures"]["values unlike file"], 1);
  EXPECT_TRUE(nlohmann::json::accept(sign_off_json({})));
}

TEST(SignOffReport, FiguresAreOnlyOfWhatIsOnTheChipAndWhole) {
  SignOff report = full_report();
  for (const char* name : {"lens ripple", "mean color difference", "field ripple"})
    EXPECT_TRUE(figures_of(report).contains(name)) << name;
  EXPECT_THAT(sign_off_html(report), Not(HasSubstr("which is not on the chip")));
  report.chart_on_chip = report.lens_on_chip = false;
  EXPECT_THAT(sign_off_html(report), HasSubstr("thick as corrected, which is not on the chip</h2>"));
  EXPECT_THAT(sign_off_html(report), HasSubstr("matrix of TVI, Outdoor, which is not on the chip</h2>"));
  report.field.pop_back();
  for (const char* name : {"lens ripple", "mean color difference", "field ripple"})
    EXPECT_FALSE(figures_of(report).contains(name)) << name;
  EXPECT_TRUE(figures_of(report).contains("lens ripple before"));
}

class SignOffPagesTest : public test::DeskBench {};

TEST_F(SignOffPagesTest, TellHowTheChipsValueIsKnown) {
  UserDataImage file;
  file.set_word(440, 77);
  file.set_entry(214, 255);
  ValueStates values(fake_.link);
  values.file_is(file);
  LensDesk lens(host_, image());
  lens.watch(values);
  lens.type(lens.field(lens.values().parameter1[0]), 0x123);
  lens.send_row(LensControl::parameter1);
  fake_.advance(1000);
  const std::vector<SignOffPage> pages = sign_off_pages(values);
  ASSERT_EQ(pages.size(), 6u);
  EXPECT_EQ(pages[5].title, "LSC");
  const SignOffValue& red = pages[5].values[0];
  EXPECT_EQ(red.name, "parameter1.r");
  EXPECT_EQ(red.page, 0x123);
  EXPECT_EQ(red.chip, 0x123);
  EXPECT_EQ(red.file, 77);
  EXPECT_EQ(red.known, "sent");
  EXPECT_EQ(pages[5].values[3].known, "");
  EXPECT_FALSE(pages[0].values[0].page) << "a page that was never opened";
  EXPECT_EQ(red.judged, 0x123);
  EXPECT_TRUE(red.unlike_file);

  SignOff report;
  take_desk(report, lens, values);
  EXPECT_FALSE(report.lens_on_chip) << "one row is";
  lens.send_row(LensControl::parameter2);
  fake_.advance(1000);
  take_desk(report, lens, values);
  EXPECT_TRUE(report.lens_on_chip);
  lens.type(lens.field(lens.values().parameter1[0]), 0x200);
  take_desk(report, lens, values);
  EXPECT_FALSE(report.lens_on_chip) << "what was typed was not sent";

  AwbDesk awb(host_, image());
  awb.watch(values);
  awb.type(0, 100);
  awb.type(awb.field(awb.values().patches[0].r), 200);
  awb.type(awb.field(awb.values().patches[0].g), 300);
  report.pages = sign_off_pages(values);
  const Figures figures = figures_of(report);
  EXPECT_EQ(figures.at("lsc.parameter1.r"), 0x123) << "as the chip has it";
  EXPECT_FALSE(figures.contains("awb.a_slope")) << "typed and not sent";
  EXPECT_EQ(figures.at("awb.patch1.r"), 200) << "which no chip gets";
  EXPECT_EQ(figures.at("values unlike file"), 2) << "as a file holds it 300 is 255";

  MatrixDesk matrix(host_, image());
  matrix.watch(values);
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column)
      matrix.type_code(row, column, row == column ? "0x0400" : "0x0000");
    take_desk(report, matrix, values);
    EXPECT_FALSE(report.chart_on_chip) << row << " rows are";
    host_.user.answers = {Answer::yes};
    matrix.set_row(static_cast<MatrixControl>(row), host_.user);
    fake_.advance(1000);
  }
  take_desk(report, matrix, values);
  EXPECT_EQ(report.chart_of, "TVI, Outdoor");
  EXPECT_TRUE(report.chart_on_chip);
  matrix.type(matrix.field(matrix.values().tables[kTvi][0][0][0]), 0x500);
  take_desk(report, matrix, values);
  EXPECT_FALSE(report.chart_on_chip) << "what was typed was not sent";
}

TEST(JournalSummary, CountsWhatWasWritten) {
  WriteJournal journal;
  WriteRecord record;
  record.page = "lsc";
  record.control = "Parameter-1";
  record.flushes = {{{0x64, 1}, {0x64, 2}}, {{0x64, 3}}};
  record.flushes_left = 2;
  journal.add(record);
  record.flushes_left = 1;
  record.result = WriteRecord::Result::cut_short;
  journal.add(record);
  journal.add(connection_record({}));
  const JournalSummary summary = journal_summary(journal);
  EXPECT_EQ(summary.writes, 2u);
  EXPECT_EQ(summary.registers, 5u);
  EXPECT_EQ(summary.failed, 1u);
  EXPECT_THAT(summary.controls, ElementsAre(testing::Pair("lsc: Parameter-1", 2)));
}

}  // namespace
}  // namespace qv5123
