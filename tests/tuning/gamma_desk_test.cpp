#include "tuning/gamma_desk.h"

#include <gmock/gmock.h>

#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "support/traffic_text.h"

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
  std::vector<std::string> boxes() const {
    std::vector<std::string> texts;
    for (const Message& message : host_.user.messages) texts.push_back(message.text);
    return texts;
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
  EXPECT_THAT(boxes(), ElementsAre("Invalid values.", "Invalid values"));
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
  desk_.start_load();
  answer_load(reply);
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

}  // namespace
}  // namespace qv5123
