#include "tuning/front.h"

#include <gtest/gtest.h>

#include <random>

#include "support/traffic_text.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

FrontValues example() {
  FrontValues values;
  values.video_mode = 14;
  values.colour_order = 2;
  values.tdn_mode = 3;
  values.delay = 0x1E;
  values.ir_on_off = 0x155;
  values.led_dimmer = 200;
  values.polarity = 1;
  values.clamp = {0x0123, 0x0FFF, 0x1456, 0};
  values.wdr_state = 2;
  return values;
}

TEST(Front, FullSaveOnTheWire) {
  EXPECT_EQ(on_wire(front_save_traffic(example())),
            "@fa01*|@6f02*|@6e0e*|@7004*|@711e*|@7455*|@8dc8*|@aa01*|@7801*@7823*|@790f*@79ff*|@7a14*@7a56*|"
            "@7b00*@7b00*|@8902*|@fa00*|");
}

TEST(Front, FullSaveInTheImage) {
  UserDataImage image;
  save_to_user_data(example(), image);
  UserDataImage expected;
  const std::vector<std::pair<int, int>> entries{
      {454, 14},   {456, 2},    {457, 0x1E}, {458, 0x1E}, {462, 4},    {464, 0x55},
      {465, 0x01}, {466, 0x23}, {467, 0x0F}, {468, 255},  {469, 0x14}, {470, 0x56},
      {471, 0},    {472, 0},    {549, 2},    {551, 1},    {582, 200}};
  for (const auto& [index, value] : entries) expected.set_entry(static_cast<std::size_t>(index), value);
  EXPECT_EQ(image.bytes(), expected.bytes());
}

TEST(Front, ReplyOf40Digits) {
  //                         mode order tdn pol  clamps            g.  b.  28  30  32  34  36  38
  const std::string reply =
      "0e"
      "02"
      "04"
      "ff"
      "01230fff14560000"
      "08"
      "02"
      "12"
      "20"
      "48"
      "80"
      "c8"
      "02";
  FrontValues current;
  current.delay = 7;
  current.ir_on_off = 9;
  current.flags[static_cast<std::size_t>(FrontFlag::AwbTask)] = false;
  auto values = decode_front_reply(reply, current);
  ASSERT_TRUE(values);
  FrontValues expected = example();
  expected.delay = 7;
  expected.ir_on_off = 9;
  expected.flags = {true, true, true, true, true, true, false, true, true, false};
  expected.color_suppress = true;
  EXPECT_EQ(*values, expected);
  std::string with_plus_1 = reply;
  EXPECT_EQ(encode_front_reply(*values), with_plus_1.replace(6, 2, "01"));
  EXPECT_FALSE(decode_front_reply(reply.substr(0, 39), current));

  values = decode_front_reply(
      "0000000000000000000000"
      "00"
      "f7"
      "fd"
      "ed"
      "df"
      "b7"
      "81"
      "0000",
      current);
  FrontValues only_hue = current;
  only_hue.tdn_mode = -1;
  only_hue.flags = {false, false, false, false, false, false, true, false, true, false};
  EXPECT_EQ(*values, only_hue) << "every other bit set: suppression is 128 and nothing else";
}

TEST(Front, WhatIsSavedComesBackFromImageAndChip) {
  std::mt19937 random(3);
  const auto any = [&](int high) { return std::uniform_int_distribution<int>(0, high)(random); };
  for (int round = 0; round < 100; ++round) {
    FrontValues values{any(15),  any(3),   any(3), any(255),
                       any(255), any(255), any(1), {any(4095), any(4095), any(4095), any(4095)},
                       any(2),   {},       false};
    FrontValues loaded;
    loaded.flags = values.flags;
    UserDataImage image;
    save_to_user_data(values, image);
    reload_from_user_data(loaded, image);
    EXPECT_EQ(loaded, values);
    for (std::size_t i = 0; i < 8; ++i) values.flags[i] = any(1) == 1;
    values.color_suppress = any(1) == 1;
    EXPECT_EQ(decode_front_reply(encode_front_reply(values), loaded), values);
  }
}

TEST(Front, ControlsStoreAndSend) {
  FrontValues values = example();
  using C = FrontControl;
  const auto effect = [&](C control) { return front_effect(control, values); };
  EXPECT_EQ(effect(C::VideoMode), (ControlEffect{{{454, 14}}, {{0x6E, 14}}}));
  EXPECT_EQ(effect(C::ColourOrder), (ControlEffect{{}, {{0x6F, 2}}}));
  EXPECT_EQ(effect(C::SaveColourOrder), (ControlEffect{{{456, 2}}, {{0x6F, 2}}}));
  EXPECT_EQ(effect(C::Delay), (ControlEffect{{{457, 0x1E}, {458, 0x1E}}, {{0x71, 0x1E}}}));
  EXPECT_EQ(effect(C::IrOnOff), (ControlEffect{{{464, 0x55}}, {{0x74, 0x55}}}));
  EXPECT_EQ(effect(C::LedDimmer), (ControlEffect{{{582, 88}}, {{0x8D, 88}}}));
  EXPECT_EQ(effect(C::Polarity), (ControlEffect{{{551, 1}}, {{0xAA, 1}}}));
  EXPECT_EQ(effect(C::ClampR), (ControlEffect{{{465, 1}, {466, 0x23}}, {{0x78, 1}, {0x78, 0x23}}}));
  EXPECT_EQ(effect(C::ClampGr), (ControlEffect{{{467, 0x0F}, {468, 255}}, {{0x79, 0x0F}, {0x79, 255}}}));
  EXPECT_EQ(effect(C::ClampGb), (ControlEffect{{{469, 0x14}, {470, 0x56}}, {{0x7A, 0x14}, {0x7A, 0x56}}}));
  EXPECT_EQ(effect(C::ClampB), (ControlEffect{{{471, 0}, {472, 0}}, {{0x7B, 0}, {0x7B, 0}}}));
  EXPECT_EQ(effect(C::WdrState), (ControlEffect{{{549, 2}}, {{0x89, 2}}}));
  values.tdn_mode = 0;
  EXPECT_EQ(effect(C::TdnMode), (ControlEffect{{{462, 1}}, {{0x70, 1}}}));
  EXPECT_EQ(effect(C::ColorSuppress), (ControlEffect{{{552, 0}}, {{0xAB, 0}}, true}));
  values.color_suppress = true;
  EXPECT_EQ(effect(C::ColorSuppress), (ControlEffect{{{552, 128}}, {{0xAB, 128}}, true}));

  std::string flags;
  for (std::size_t i = 0; i < kFrontFlagCount; ++i)
    flags += frames(flag_write(static_cast<FrontFlag>(i), true));
  EXPECT_EQ(flags, "@8201*@8301*@8401*@8501*@8601*@8701*@8801*@8b01*@a001*@a101*");
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
