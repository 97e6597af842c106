#include "tuning/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/fake_wire.h"
#include "tuning/matrix_fit.h"
#include "tuning/matrix_flow.h"
#include "tuning/patch_report.h"
#include "tuning/traffic_text.h"

namespace qv5123 {
namespace {

/// Tables whose bytes count up from 0x40 times the mode: byte k, then light source, then row.
MatrixValues marked_values() {
  MatrixValues values;
  for (int mode = 0; mode < 4; ++mode) {
    for (int row = 0; row < 3; ++row) {
      for (int light = 0; light < 3; ++light) {
        for (int k = 0; k < 6; ++k) {
          values.tables[mode][row][light][k] =
              static_cast<std::uint8_t>(0x40 * mode + 18 * row + 6 * light + k);
        }
      }
    }
  }
  return values;
}

/// The chart through a sensor whose colours leak into one another; `level` counts for white.
MeasuredColours leaking_chart(double level) {
  // The inverse of kTruth.
  constexpr double kLeak[3][3] = {{0.7038961039, 0.2051948052, 0.0909090909},
                                  {0.1324675325, 0.7766233766, 0.0909090909},
                                  {0.0632034632, 0.2398268398, 0.6969696970}};
  MeasuredColours chart{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    for (std::size_t r = 0; r < 3; ++r) {
      double light = 0;
      for (std::size_t j = 0; j < 3; ++j) light += kLeak[r][j] * kPatchReferences[i][j];
      chart[i][r] = static_cast<std::uint32_t>(std::lround(level * light));
    }
  }
  return chart;
}
constexpr double kTruth[3][3] = {{1.5, -0.35, -0.15}, {-0.25, 1.4, -0.15}, {-0.05, -0.45, 1.5}};

TEST(Matrix, KeepsItsTablesInTheUserData) {
  UserDataImage image;
  save_to_user_data(marked_values(), image);
  EXPECT_EQ(image.entry(382), 0x00);
  EXPECT_EQ(image.entry(382 + 6), 18) << "rows follow one another within a light source";
  EXPECT_EQ(image.entry(382 + 18), 6);
  EXPECT_EQ(image.entry(802), 0x40 + 53);
  EXPECT_EQ(image.entry(845), 0x80);
  EXPECT_EQ(image.entry(635 + 1), 0xC1);
}

TEST(Matrix, DecodesTheReply) {
  const std::string reply = encode_matrix_reply(marked_values());
  ASSERT_EQ(reply.size(), 432u);
  EXPECT_EQ(reply.substr(0, 12), "00060c01070d") << "of each byte the three light sources";
  EXPECT_EQ(reply.substr(36, 6), "12181e") << "then the rows";
  EXPECT_EQ(reply.substr(108, 6), "c0c6cc") << "TVI, CVBS, AHD, CVI";
  EXPECT_EQ(reply.substr(216, 2), "40");
  EXPECT_EQ(reply.substr(430), "b5");
  EXPECT_FALSE(decode_matrix_reply(reply.substr(1), {}));

  std::string negative(432, '0');
  negative.replace(108 + 72, 6, "0000FF");  // CVBS, row B, byte 0, Light-2
  negative.replace(108 + 78, 6, "000080");  // byte 1
  MatrixValues current;
  current.mode = kCvbs;
  current.light = 2;
  EXPECT_EQ(decode_matrix_reply(negative, current)->coefficients[2][0], -0.125f);
}

TEST(Matrix, RoundTripsThroughImageAndReply) {
  std::mt19937 random(3);
  for (int round = 0; round < 10; ++round) {
    MatrixValues values;
    for (ModeTable& table : values.tables) {
      for (auto& row : table) {
        for (MatrixRowBytes& bytes : row) {
          for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
        }
      }
    }
    values.mode = static_cast<int>(random() % 4);
    values.light = static_cast<int>(random() % 3);
    show_matrix(values);
    MatrixValues stored = values;
    store_matrix(stored);
    EXPECT_EQ(stored, values) << "showing and storing are exact";

    MatrixValues empty;
    empty.mode = values.mode;
    empty.light = values.light;
    EXPECT_EQ(decode_matrix_reply(encode_matrix_reply(values), empty), values);
    UserDataImage image;
    save_to_user_data(values, image);
    reload_from_user_data(empty, image);
    EXPECT_EQ(empty, values);
  }
}

TEST(Matrix, SendsARowAndSavesAllModes) {
  MatrixValues values = marked_values();
  values.mode = kCvi;
  values.light = 1;
  EXPECT_EQ(traffic_text(matrix_send_row(values, 2)), "4e01|ca02|57aa|57ab|57ac|57ad|57ae|57af");
  values.mode = 4;
  EXPECT_EQ(traffic_text(matrix_send_row(values, 2)), "4e01|ca04");

  const std::string save = traffic_text(matrix_full_save(values));
  EXPECT_EQ(save.substr(0, 15 + 9 * 30),
            "f901|fa01|ca00|"
            "5200|5201|5202|5203|5204|5205|5506|5507|5508|5509|550a|550b|580c|580d|580e|580f|5810|5811|"
            "5312|5313|5314|5315|5316|5317|5618|5619|561a|561b|561c|561d|591e|591f|5920|5921|5922|5923|"
            "5424|5425|5426|5427|5428|5429|572a|572b|572c|572d|572e|572f|5a30|5a31|5a32|5a33|5a34|5a35|");
  EXPECT_EQ(save.substr(285, 9), "ca01|5240");
  EXPECT_EQ(save.substr(save.size() - 14), "5af5|fa00|f900");
  EXPECT_EQ(matrix_full_save(values).size(), 2u + 4 * 55 + 2);
}

TEST(Matrix, CodesAreTwosComplement) {
  EXPECT_EQ(matrix_code_text(-0.25f), "0x1F00");
  EXPECT_EQ(matrix_code_text(1.0f), "0x0400");
  EXPECT_EQ(matrix_code_text(0.9999f), "0x03FF");
  EXPECT_EQ(matrix_coefficient_of("0x1F00"), -0.25f);
  EXPECT_EQ(matrix_coefficient_of("3ff"), 0x3FF / 1024.0f);
  for (const char* text : {"", "0x", "0x2000", "-1", "0x04 ", "1.0"})
    EXPECT_FALSE(matrix_coefficient_of(text));
  EXPECT_EQ(matrix_code(NAN), 0);
  MatrixValues values;
  values.coefficients = {{{0.5f, 9, -0.25f}, {-0.25f, 1.5f, 9}, {0.25f, 9, 0.5f}}};
  set_matrix_rows(values);
  EXPECT_EQ(values.tables[kTvi][0][0], (MatrixRowBytes{0x02, 0x00, 0x03, 0x00, 0xFF, 0x00}));
  EXPECT_EQ(values.tables[kTvi][1][0], (MatrixRowBytes{0xFF, 0x00, 0x06, 0x00, 0xFF, 0x00}));
  EXPECT_EQ(values.tables[kTvi][2][0], (MatrixRowBytes{0x01, 0x00, 0x01, 0x00, 0x02, 0x00}));
}

TEST(MatrixFit, RecoversTheInverseOfAKnownLeak) {
  MatrixValues values;
  values.measured = leaking_chart(1e6);
  values.mode = kAhd;
  ASSERT_EQ(calculate_matrix(values), MatrixResult::ok);
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(values.coefficients[r][j], kTruth[r][j], 0.015) << r << j;
  }
  EXPECT_NE(values.tables[kAhd], MatrixValues().tables[kAhd]);
  EXPECT_EQ(values.tables[kTvi], MatrixValues().tables[kTvi]) << "stored for the current mode only";

  const auto report = patch_report(values.measured, values.coefficients);
  ASSERT_TRUE(report);
  EXPECT_GT(report->before.mean, 3);
  EXPECT_LT(report->after.mean, 1);
  EXPECT_LT(report->after.worst, 2.5);
  EXPECT_LE(report->after.median, report->after.worst);
  EXPECT_NEAR(report->patches[20]->measured[1], kPatchReferences[20][1], 0.01);
}

TEST(MatrixFit, RatioZeroIsTheIdentityForAnyMeasurement) {
  MatrixValues values;
  values.ratio = 0;
  values.measured = leaking_chart(200);
  EXPECT_EQ(calculate_matrix(values), MatrixResult::ok);
  values.light = 1;
  values.measured.fill({7, 7, 7});
  EXPECT_EQ(calculate_matrix(values), MatrixResult::unsolvable);
  for (int light : {0, 1}) {
    EXPECT_EQ(values.tables[0][0][light], (MatrixRowBytes{0x04, 0, 0, 0, 0, 0}));
    EXPECT_EQ(values.tables[0][1][light], (MatrixRowBytes{0, 0, 0x04, 0, 0, 0}));
    EXPECT_EQ(values.tables[0][2][light], (MatrixRowBytes{0, 0, 0, 0, 0x04, 0}));
  }
}

TEST(MatrixFit, TakesGreysAloneButNotWithoutThem) {
  MatrixValues values;
  values.measured = leaking_chart(200);
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (i < kFirstGrey || i > kLastGrey) values.measured[i] = {};
  }
  ASSERT_NE(calculate_matrix(values), MatrixResult::no_grey);
  for (const auto& row : values.coefficients) EXPECT_NEAR(row[0] + row[1] + row[2], 1, 1e-3);

  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) values.measured[i] = {4'294'967'295u, 1, 1};
  EXPECT_EQ(calculate_matrix(values), MatrixResult::unsolvable) << "four times the same";

  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) values.measured[i][2] = 0;
  const auto tables = values.tables;
  EXPECT_EQ(calculate_matrix(values), MatrixResult::no_grey);
  EXPECT_EQ(values.tables, tables);
  EXPECT_FALSE(patch_report(values.measured, values.coefficients));
}

TEST(MatrixFit, LeavesOutPatchesWithAZeroButBalancesWithThem) {
  MeasuredColours chart = leaking_chart(1000);
  MeasuredColours without = chart;
  chart[0] = {50, 0, 4'000'000'000};
  without[0] = {};
  EXPECT_EQ(fit_matrix(chart, 100)->coefficients, fit_matrix(without, 100)->coefficients);
  EXPECT_FALSE(patch_report(chart, {})->patches[0]);

  MeasuredColours greys{};
  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) greys[i] = {10, 20, 40};
  greys[kFirstGrey][1] = 0;
  greys[0] = {101, 7, 101};
  const auto balanced = balance_patches(greys);  // red by 60 / 40, blue by 60 / 160
  EXPECT_EQ((*balanced)[0], (std::array<double, 3>{151, 7, 37}));
}

TEST(MatrixFlow, FetchesAPatchAndGoesOnToTheNext) {
  test::FakeWire wire;
  int answers = 3;
  wire.sender.chip = [&](const std::string& bytes) {
    if (bytes.starts_with("@94") && answers-- > 0) wire.receive("~" + bytes.substr(9, 2) + "^");
  };
  MatrixValues values;
  values.patch = 5;
  values.patch_step = 100;
  FlowSet flows;
  bool answered = false;
  auto get = [&]() -> Task<> { answered = co_await get_patch_color(wire.link, values); };
  flows.spawn(get());
  wire.advance(2000);
  EXPECT_TRUE(answered);
  EXPECT_EQ(values.measured[5], (MeasuredColour{0x3D, 0x3E, 0x3F}));
  EXPECT_EQ(values.patch, 6u);
  EXPECT_EQ(values.picker, (PickerPosition{460, 640})) << "the start of the next row";
  EXPECT_EQ(wire.sender.writes.size(), 3u + 4);

  flows.spawn(get());
  wire.advance(2000);
  EXPECT_FALSE(answered);
  EXPECT_EQ(values.measured[6], MeasuredColour{}) << "no answer leaves the patch as it was";
  EXPECT_EQ(values.patch, 6u);
}

Task<> switch_it(CommandLink& link, MatrixValues& values, bool on) {
  const std::string trouble = co_await switch_matrix_picker(link, values, on);
  EXPECT_EQ(trouble, "");
}

TEST(MatrixFlow, SwitchesThePickerInItsOrder) {
  test::FakeWire wire;
  wire.sender.chip = [&](const std::string& bytes) {
    if (bytes.starts_with("@94")) wire.receive("~61^");
  };
  MatrixValues values;
  values.manual_input = true;
  FlowSet flows;
  flows.spawn(switch_it(wire.link, values, true));
  wire.advance(2000);
  EXPECT_FALSE(values.manual_input);
  flows.spawn(switch_it(wire.link, values, false));
  wire.advance(2000);
  EXPECT_EQ(wire.sender.wire(),
            "@940a*@9429*@920a*@9220*@9380*@920a*@9229*@93e1*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*"
            "@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9361*@a001*@a101*");
}

}  // namespace
}  // namespace qv5123
