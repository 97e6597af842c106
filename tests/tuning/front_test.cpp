#include "tuning/front.h"

#include <gtest/gtest.h>

#include "support/traffic_text.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

TEST(Front, EachFlagIsItsOwnBitOfTheReply) {
  // From position 24 on every bit is set that is nobody's flag; the dimmer and WDR are 0.
  const std::string reply = std::string(24, '0') + "f7fdeddfb7810000";
  const auto values = decode_front_reply(reply, {});
  ASSERT_TRUE(values);
  FrontValues only_hue;
  only_hue.tdn_mode = -1;
  only_hue.flags = {false, false, false, false, false, false, true, false, true, true};
  EXPECT_EQ(*values, only_hue) << "suppression is 128 and nothing else";
  EXPECT_FALSE(decode_front_reply(reply.substr(1), {}));
}

TEST(UserdataParameters, SetSendsTheGroupKept) {
  UserDataImage image;
  for (std::size_t i = 0; i < 1024; ++i) image.set_entry(i, static_cast<int>(i));
  EXPECT_EQ(on_wire(parameter_traffic(0, image)), "@fa01*|@ac29*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(11, image)), "@fa01*|@b433*|@b434*|@b435*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(20, image)), "@fa01*|@8cdb*|@8cdc*|@8cdd*|@8cde*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(23, image)), "@fa01*|@66c4*|@66c5*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(29, image)), "@fa01*|@ba3e*|@ba3f*|@ba40*|@ba41*|@fa00*|");
  EXPECT_TRUE(parameter_traffic(34, image).empty());
  EXPECT_EQ(parameter_line(8, image, LineOf::Set),
            "Pre Nr filter size. [7:4] = ISO 2, [3:0] = ISO 3 : 0x31\r\n");
  EXPECT_EQ(parameter_line(33, image, LineOf::Selection), "Contrast Knee_Thr_L : 0x45\r\n");
  EXPECT_EQ(parameter_line(33, image, LineOf::Set), "Contrast Knee Thr_L : 0x45\r\n");
}

}  // namespace
}  // namespace qv5123
