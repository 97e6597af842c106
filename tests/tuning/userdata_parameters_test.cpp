#include "tuning/userdata_parameters.h"

#include <gtest/gtest.h>

#include "support/traffic_text.h"

namespace qv5123 {
namespace {

TEST(UserdataParameters, SetSendsTheGroupKept) {
  UserDataImage image;
  for (std::size_t i = 0; i < 1024; ++i) image.set_entry(i, static_cast<int>(i));
  EXPECT_EQ(on_wire(parameter_traffic(0, image)), "@fa01*|@ac29*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(20, image)), "@fa01*|@8cdb*|@8cdc*|@8cdd*|@8cde*|@fa00*|");
  EXPECT_EQ(on_wire(parameter_traffic(29, image)), "@fa01*|@ba3e*|@ba3f*|@ba40*|@ba41*|@fa00*|");
  EXPECT_TRUE(parameter_traffic(34, image).empty());
  EXPECT_EQ(parameter_line(8, image, LineOf::Set),
            "Pre Nr filter size. [7:4] = ISO 2, [3:0] = ISO 3 : 0x31\r\n");
}

}  // namespace
}  // namespace qv5123
