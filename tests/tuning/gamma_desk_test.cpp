#include "tuning/gamma_desk.h"

#include <gmock/gmock.h>

#include <cmath>

#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "support/traffic_text.h"
#include "tuning/gamma_chart.h"
#include "tuning/gamma_curve.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class GammaDeskTest : public test::DeskBench, protected GammaDesk::View {
 protected:
  GammaDeskTest() { desk_.attach(*this); }
  void add_message(const std::string& text) override { messages_.push_back(text); }
  int point(GammaCurveId id, int number) const {
    return desk_.values().curve(id)[static_cast<std::size_t>(number - 1)];
  }
  void type_point(const std::string& name, int value) {
    desk_.model().set_number(test::field_place(desk_, name), value);
  }

  GammaDesk desk_{host_, host_.doc.user_data, host_.doc.front_gamma_level};
  std::vector<std::string> messages_;
};

TEST_F(GammaDeskTest, ComputesAndAppliesTheSelectedCurve) {
  EXPECT_EQ(host_.doc.front_gamma_level, 16) << "the default, where none was set";
  desk_.choose_channel(GammaChannel::green);
  desk_.type_gamma(1);
  desk_.compute_end(host_.user);
  EXPECT_EQ(point(GammaCurveId::green, 21), 896);
  EXPECT_EQ(point(GammaCurveId::red, 22), 0);
  EXPECT_THAT(messages_, ElementsAre(StartsWith("G: 0, 0, 5, 13,")));
  EXPECT_EQ(host_.last_status(), "Gamma values calculated: G");
  type_point("g[0]", 0x123);
  desk_.apply();
  EXPECT_EQ(host_.last_status(), "Gamma data applying...");
  fake_.advance(22 * 50);
  ASSERT_EQ(fake_.sender.writes.size(), 22u);
  EXPECT_EQ(fake_.sender.writes.front(), "@0401*@0423*");
  EXPECT_EQ(fake_.sender.writes.back(), "@0403*@04f8*");
  EXPECT_EQ(host_.last_status(), "Gamma data apply done");

  desk_.choose_channel(GammaChannel::front);
  EXPECT_EQ(desk_.values().channel, GammaChannel::rgb) << "the front radio falls back";
  desk_.compute_end(host_.user);
  EXPECT_EQ(host_.last_status(), "Gamma values calculated: R, G, B");
  desk_.apply();
  const std::string sent = wire(66 * 50);
  EXPECT_EQ(sent.substr(22 * 12, 12), "@0300*@0300*") << "red first";
  EXPECT_TRUE(sent.ends_with("@0503*@05f8*")) << "blue last";
  for (int curve = 0; curve < 3; ++curve) {
    EXPECT_THAT(on_wire(desk_.control_traffic(desk_.info(desk_.values().curves[curve][0]).sent_by)),
                StartsWith("@0" + std::to_string(3 + curve) + "00*"));
  }
}

TEST_F(GammaDeskTest, TheOtherValueBeingZeroIsRefused) {
  desk_.type_front_gamma(0);
  desk_.compute_end(host_.user);
  desk_.type_gamma(0);
  desk_.compute_front(host_.user);
  ASSERT_EQ(host_.user.messages.size(), 2u);
  EXPECT_EQ(host_.user.messages[0].text, "Invalid values.");
  EXPECT_EQ(host_.user.messages[1].text, "Invalid values");
  EXPECT_EQ(desk_.values().curves, GammaValues().curves);

  desk_.type_gamma(1);
  desk_.type_front_gamma(1);
  desk_.compute_front(host_.user);
  EXPECT_EQ(host_.last_status(), "Calculate Front Gamma values.");
  EXPECT_EQ(point(GammaCurveId::front, 21), 896);
}

TEST_F(GammaDeskTest, LoadsFromTheChip) {
  std::string reply(352, '0');
  reply.replace(4, 4, "0ffc").replace(88, 4, "0123").replace(260, 4, "00AB").replace(348, 4, "03f8");
  load_desk(desk_, reply);
  EXPECT_EQ(wire(), "@0700*");
  EXPECT_EQ(point(GammaCurveId::front, 2), 1023);
  EXPECT_EQ(point(GammaCurveId::red, 1), 0x123);
  EXPECT_EQ(point(GammaCurveId::green, 22), 0xAB);
  EXPECT_EQ(point(GammaCurveId::blue, 22), 1016);
  EXPECT_EQ(host_.last_status(), "Load Isp ok..");
}

TEST_F(GammaDeskTest, LoadsOnlyFromAnImageThatAFileWasReadInto) {
  image().set_word(2, (777 << 2) | 3);
  image().set_word(45, 500);
  image().set_word(47, 0xFFFF);
  image().set_word(131, 4);
  image().set_word(175, 9);
  image().set_entry(44, 99);
  type_point("b[3]", 7);
  desk_.choose_channel(GammaChannel::blue);
  desk_.load_file();
  EXPECT_EQ(host_.last_status(), "Load File ok..");
  EXPECT_EQ(desk_.values().curves, GammaValues().curves);
  EXPECT_EQ(desk_.values().channel, GammaChannel::blue);

  image().mark_loaded();
  desk_.load_file();
  EXPECT_EQ(point(GammaCurveId::front, 2), 777);
  EXPECT_EQ(point(GammaCurveId::red, 1), 500);
  EXPECT_EQ(point(GammaCurveId::red, 2), 1023) << "beyond the scale";
  EXPECT_EQ(point(GammaCurveId::green, 22), 4);
  EXPECT_EQ(point(GammaCurveId::blue, 22), 9);
  EXPECT_EQ(desk_.values().channel, GammaChannel::rgb) << "beyond the last selection";

  UserDataImage stored;
  desk_.model().store(stored);
  EXPECT_EQ(stored.word(2), 0) << "the front curve is the chip's";
  desk_.model().store_field(68, stored);
  EXPECT_EQ(stored.word(2), 777 << 2) << "the command line stores it";
  EXPECT_EQ(stored.word(45), 500);
}

TEST(GammaCurve, FollowsThePowerLawWithADarkEnd) {
  // With N = (1 / 0.45)^3 = 10.97 point 2 would be 8 - 9.
  EXPECT_EQ(end_gamma_curve(1.0, false, 16),
            (GammaCurve{0,   0,   5,   13,  22,  39,  57,  74,  91,  125, 158,
                        191, 223, 256, 320, 384, 448, 512, 640, 768, 896, 1016}));
  EXPECT_EQ(end_gamma_curve(0.4, false, 16)[3], 74) << "the other normaliser below 0.45";
  EXPECT_EQ(end_gamma_curve(0.45, false, 8),
            (GammaCurve{0,   0,   0,   0,   0,   36,  103, 168, 221, 308, 382,
                        442, 492, 537, 606, 658, 705, 749, 828, 899, 964, 1016}));
  EXPECT_EQ(end_gamma_curve(0.45, true, 16),
            (GammaCurve{0,   36,  72,  189, 215, 258, 294, 325, 352, 401, 444,
                        482, 516, 548, 606, 658, 705, 749, 828, 899, 964, 1016}));
  EXPECT_EQ(front_gamma_curve(1.0)[20], 896);
}

TEST(GammaCurve, AnyNumberGivesPointsOnTheScale) {
  for (double gamma : {0.0, -1.0, -1e300, 1e300, 1e-300, double(NAN), double(INFINITY)}) {
    for (double level : {0.0, 16.0, -1e300, double(NAN)}) {
      for (bool itu : {false, true}) {
        for (int point : end_gamma_curve(gamma, itu, level))
          EXPECT_TRUE(point >= 0 && point <= 1016) << gamma;
      }
    }
    for (int point : front_gamma_curve(gamma)) EXPECT_TRUE(point >= 0 && point <= 1016) << gamma;
  }
}

TEST(GammaChart, PutsPointsOnPixelsAndPixelsOnPoints) {
  EXPECT_EQ(gamma_pixel(0, 0), (ChartPixel{50, 532}));
  EXPECT_EQ(gamma_pixel(1023, 1023), (ChartPixel{561, 21}));
  EXPECT_EQ(gamma_pixel(256, 101), (ChartPixel{178, 482}));
  EXPECT_EQ(gamma_value_at(482), 100);
  EXPECT_EQ(gamma_value_at(-2147483647 - 1), 1023);
  EXPECT_EQ(gamma_value_at(600), 0);
  EXPECT_EQ(gamma_polyline(GammaCurve{}).size(), 23u);
}

TEST(GammaChart, GrabsTheNearestShownPoint) {
  GammaValues values;
  values.curve(GammaCurveId::red)[13] = 400;
  values.curve(GammaCurveId::green)[13] = values.curve(GammaCurveId::blue)[13] = 440;
  EXPECT_EQ(nearest_gamma_point(values, {180, 330}), (GammaHit{13, {GammaCurveId::red}}));
  EXPECT_EQ(nearest_gamma_point(values, {180, 313}),
            (GammaHit{13, {GammaCurveId::green, GammaCurveId::blue}}))
      << "points on top of one another move together";
  EXPECT_EQ(nearest_gamma_point(values, {2147483647, -2147483647}), std::nullopt);
  EXPECT_EQ(spin_gamma_point(3, -2147483647), 0);
}

}  // namespace
}  // namespace qv5123
