#include "tuning/dynamic.h"

#include <gtest/gtest.h>

#include <random>

#include "support/traffic_text.h"
namespace qv5123 {
namespace {

/// Every bank's cells count up from 0x30 times the bank's number, 8 to a row.
DynamicValues example() {
  DynamicValues values;
  int number = 11;
  for (const DynamicNumber& n : kDynamicNumbers) values.*n.value = number++;
  values.orientation = 3;
  for (std::size_t bank = 0; bank < kStepBanks; ++bank)
    for (std::size_t row = 0; row < kStepRows; ++row)
      for (std::size_t step = 0; step < kStepColumns; ++step)
        values.banks[bank][row][step] = static_cast<std::uint8_t>(0x30 * bank + 8 * row + step);
  values.light_sources = {{{0, 100}, {1, 200}, {2, 250}}};
  values.saturation = {-64, 0, 191};
  values.weights = {{{-50, 50}, {-1, 1}, {0, -2}}};
  values.hue_angle = -1;
  values.dpc_decision = 0x44;
  values.smart_ir = 2;
  values.video_mode = 1;
  return values;
}

UserDataImage image_with_dpc() {
  UserDataImage image;
  for (int i = 0; i < 3; ++i) image.set_entry(475 + i, 0x11 * (i + 1));
  return image;
}

constexpr char kSave[] =
    "@f901*|@fa01*|@5f03*|@370b*|@380c*|@390d*|@3c10*|@3b0f*|@3a0e*|"
    "@4100*|@ce01*|@4101*|@ce05*|@4102*|@ce05*|@4103*|@ce14*|@4104*|@ce14*|@4105*|@ce1e*|@4106*|@ce1e*|"
    "@4100*|@cf00*|@4101*|@cf40*|@4102*|@cfff*|@4103*|@cfff*|@4104*|@cf00*|@4105*|@cf41*|@4106*|@cf42*|"
    "@4100*|@d000*|@4101*|@d001*|@4102*|@d002*|@4103*|@d003*|@4104*|@d004*|@4105*|@d005*|@4106*|@d006*|"
    "@4100*|@d101*|@4101*|@d102*|@4102*|@d103*|@4103*|@d104*|@4104*|@d105*|@4105*|@d106*|@4106*|@d107*|"
    "@4100*|@d208*|@4101*|@d209*|@4102*|@d20a*|@4103*|@d20b*|@4104*|@d20c*|@4105*|@d20d*|@4106*|@d20e*|"
    "@4100*|@d350*|@4101*|@d320*|@4102*|@d340*|@4103*|@d320*|@4104*|@d350*|@4105*|@d33f*|@4106*|@d33e*|"
    "@4100*|@4200*|@4830*|@c360*|@ce01*|@d4c0*|@4308*|@4938*|@c468*|@cf00*|@d5c8*|@4410*|"
    "@4a40*|@c570*|@d000*|@d6d0*|@4518*|@4b48*|@c678*|@d101*|@d7d8*|@4620*|@4c50*|@c780*|"
    "@d208*|@d8e0*|@4728*|@4d58*|@c888*|@d350*|@d9e8*|"
    "@4101*|@4201*|@4831*|@c361*|@ce05*|@d4c1*|@4309*|@4939*|@c469*|@cf40*|@d5c9*|@4411*|"
    "@4a41*|@c571*|@d001*|@d6d1*|@4519*|@4b49*|@c679*|@d102*|@d7d9*|@4621*|@4c51*|@c781*|"
    "@d209*|@d8e1*|@4729*|@4d59*|@c889*|@d320*|@d9e9*|"
    "@4102*|@4202*|@4832*|@c362*|@ce05*|@d4c2*|@430a*|@493a*|@c46a*|@cfff*|@d5ca*|@4412*|"
    "@4a42*|@c572*|@d002*|@d6d2*|@451a*|@4b4a*|@c67a*|@d103*|@d7da*|@4622*|@4c52*|@c782*|"
    "@d20a*|@d8e2*|@472a*|@4d5a*|@c88a*|@d340*|@d9ea*|"
    "@4103*|@4203*|@4833*|@c363*|@ce14*|@d4c3*|@430b*|@493b*|@c46b*|@cfff*|@d5cb*|@4413*|"
    "@4a43*|@c573*|@d003*|@d6d3*|@451b*|@4b4b*|@c67b*|@d104*|@d7db*|@4623*|@4c53*|@c783*|"
    "@d20b*|@d8e3*|@472b*|@4d5b*|@c88b*|@d320*|@d9eb*|"
    "@4104*|@4204*|@4834*|@c364*|@ce14*|@d4c4*|@430c*|@493c*|@c46c*|@cf00*|@d5cc*|@4414*|"
    "@4a44*|@c574*|@d004*|@d6d4*|@451c*|@4b4c*|@c67c*|@d105*|@d7dc*|@4624*|@4c54*|@c784*|"
    "@d20c*|@d8e4*|@472c*|@4d5c*|@c88c*|@d350*|@d9ec*|"
    "@4105*|@4205*|@4835*|@c365*|@ce1e*|@d4c5*|@430d*|@493d*|@c46d*|@cf41*|@d5cd*|@4415*|"
    "@4a45*|@c575*|@d005*|@d6d5*|@451d*|@4b4d*|@c67d*|@d106*|@d7dd*|@4625*|@4c55*|@c785*|"
    "@d20d*|@d8e5*|@472d*|@4d5d*|@c88d*|@d33f*|@d9ed*|"
    "@4106*|@4206*|@4836*|@c366*|@ce1e*|@d4c6*|@430e*|@493e*|@c46e*|@cf42*|@d5ce*|@4416*|"
    "@4a46*|@c576*|@d006*|@d6d6*|@451e*|@4b4e*|@c67e*|@d107*|@d7de*|@4626*|@4c56*|@c786*|"
    "@d20e*|@d8e6*|@472e*|@4d5e*|@c88e*|@d33e*|@d9ee*|"
    "@4e00*|@4f64*|@4e01*|@50c8*|@4e02*|@51fa*|"
    "@4e00*|@5b00*|@4e01*|@5b40*|@4e02*|@5bff*|"
    "@602e*|@8c11*|@8c22*|@8c33*|@8c44*|"
    "@2fff*|@2fce*|@2f00*|@2f32*|"
    "@30ff*|@30ff*|@3000*|@3001*|"
    "@3100*|@3100*|@31ff*|@31fe*|"
    "@4e00*|@6702*|@fa00*|@f900*|";

TEST(Dynamic, FullSaveOnTheWire) {
  const StepGrid grid{{{9, 10, 5, 20, 20, 30, 30},
                       {-64, 0, 191, 300, -100, 1, 2},
                       {0, 1, 2, 3, 4, 5, 6},
                       {1, 2, 3, 4, 5, 6, 7},
                       {8, 9, 10, 11, 12, 13, 14},
                       {-16, 32, 0, 40, -20, 1, 2}}};
  const DynamicSave save = dynamic_save(example(), grid, image_with_dpc());
  EXPECT_EQ(on_wire(save.traffic), kSave);
  ASSERT_EQ(save.messages.size(), 1u);
  EXPECT_EQ(save.messages[0].title, "ISO Control");
  EXPECT_EQ(save.values.banks[3][kRowIso], (StepBytes{1, 5, 5, 20, 20, 30, 30}));
  EXPECT_EQ(save.values.banks[0], example().banks[0]);
}

constexpr char kReply[] =
    "030b0c0d0e0f10"
    "00306090c001316191c102326292c203336393c304346494c405356595c506366696c6"
    "08386898c809396999c90a3a6a9aca0b3b6b9bcb0c3c6c9ccc0d3d6d9dcd0e3e6e9ece"
    "104070a0d0114171a1d1124272a2d2134373a3d3144474a4d4154575a5d5164676a6d6"
    "184878a8d8194979a9d91a4a7aaada1b4b7babdb1c4c7cacdc1d4d7daddd1e4e7eaede"
    "205080b0e0215181b1e1225282b2e2235383b3e3245484b4e4255585b5e5265686b6e6"
    "285888b8e8295989b9e92a5a8abaea2b5b8bbbeb2c5c8cbcec2d5d8dbded2e5e8ebeee"
    "006401c802fa0040ff442effce0032ffff00010000fffe020108";

TEST(Dynamic, ReplyOf243Bytes) {
  const auto values = decode_dynamic_reply(kReply, DynamicValues{});
  ASSERT_TRUE(values);
  DynamicValues expected = example();
  expected.ir_led = true;
  EXPECT_EQ(*values, expected);

  std::string first_code_of_its_mode = kReply;
  first_code_of_its_mode.replace(484, 2, "02");
  EXPECT_EQ(encode_dynamic_reply(*values), first_code_of_its_mode);
  EXPECT_FALSE(decode_dynamic_reply(std::string_view(kReply).substr(0, 485), DynamicValues{}));
}

TEST(Dynamic, WeightsAboveTheRangeAreNegativeOnes) {
  std::string reply = kReply;
  reply.replace(2 * 228, 8, "0033ff00");
  const auto values = decode_dynamic_reply(reply, DynamicValues{});
  EXPECT_EQ(values->weights[0], (AwbWeights{-50, -50}));
}

TEST(Dynamic, ImageEntries) {
  UserDataImage image = image_with_dpc();
  save_to_user_data(example(), image);
  const auto entries = [&](std::size_t from, std::size_t count) {
    std::vector<int> found;
    for (std::size_t i = 0; i < count; ++i) found.push_back(image.entry(from + i));
    return found;
  };
  using Bytes = std::vector<int>;
  EXPECT_EQ(entries(200, 14), (Bytes{0, 255, 206, 0, 50, 255, 255, 0, 1, 0, 0, 255, 254, 0}));
  EXPECT_EQ(entries(284, 9), (Bytes{0, 11, 12, 13, 14, 15, 16, 3, 0x00}));
  EXPECT_EQ(entries(332, 3), (Bytes{0x2D, 0x2E, 0x30})) << "TVI ends, IR-LED begins";
  EXPECT_EQ(entries(375, 8), (Bytes{0x5E, 0, 100, 1, 200, 2, 250, 0}));
  EXPECT_EQ(entries(435, 6), (Bytes{0, 0, 64, 255, 46, 0}));
  EXPECT_EQ(entries(475, 5), (Bytes{0x11, 0x22, 0x33, 0x44, 0}));
  EXPECT_EQ(entries(582, 3), (Bytes{0, 2, 0}));
  EXPECT_EQ(entries(592, 8), (Bytes{0x60, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x68}));
  EXPECT_EQ(entries(633, 2), (Bytes{0x8E, 0}));
  EXPECT_EQ(entries(706, 3), (Bytes{0, 0x90, 0x91}));
  EXPECT_EQ(entries(748, 2), (Bytes{0xBE, 0}));
  EXPECT_EQ(entries(802, 3), (Bytes{0, 0xC0, 0xC1}));
  EXPECT_EQ(entries(844, 2), (Bytes{0xEE, 0}));

  DynamicValues odd = example();
  odd.light_sources[1] = {3, 77};
  save_to_user_data(odd, image);
  EXPECT_EQ(entries(376, 6), (Bytes{0, 100, 1, 200, 2, 250})) << "a record of no known kind is not stored";
  EXPECT_EQ(on_wire(light_source_traffic(odd, 1)), "@fa01*|@4e01*|@fa00*|");
}

DynamicValues random_values(std::mt19937& random) {
  const auto any = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  DynamicValues values;
  for (const DynamicNumber& n : kDynamicNumbers) values.*n.value = any(n.range.lowest, n.range.highest);
  values.orientation = any(0, 3);
  for (StepBank& bank : values.banks)
    for (StepBytes& row : bank)
      for (std::uint8_t& cell : row) cell = static_cast<std::uint8_t>(any(0, 255));
  for (std::size_t k = 0; k < kLightSources; ++k) {
    values.light_sources[k] = {any(0, 2), any(0, 250)};
    values.saturation[k] = any(-64, 191);
    values.weights[k] = {any(-50, 50), any(-50, 50)};
  }
  values.hue_angle = any(-45, 45);
  values.dpc_decision = any(1, 255);
  values.smart_ir = any(0, 3);
  values.ir_led = any(0, 1) == 1;
  values.video_mode = any(0, 3);
  return values;
}

TEST(Dynamic, WhatIsSavedComesBackFromImageAndChip) {
  std::mt19937 random(7);
  for (int round = 0; round < 100; ++round) {
    const DynamicValues values = random_values(random);
    UserDataImage image;
    save_to_user_data(values, image);
    DynamicValues loaded;
    loaded.ir_led = values.ir_led;
    loaded.video_mode = values.video_mode;
    reload_from_user_data(loaded, image);
    EXPECT_EQ(loaded, values);
    EXPECT_EQ(decode_dynamic_reply(encode_dynamic_reply(values), DynamicValues{}), values);
  }
}

TEST(Dynamic, ControlsOnTheWire) {
  DynamicValues values = example();
  EXPECT_EQ(on_wire(orientation_traffic(values)), "@fa01*|@5f03*|@fa00*|");
  EXPECT_EQ(on_wire(light_source_traffic(values, 2)), "@fa01*|@4e02*|@51fa*|@fa00*|");
  EXPECT_EQ(on_wire(saturation_traffic(values, 1)), "@fa01*|@4e01*|@5b40*|@fa00*|");
  EXPECT_EQ(frames(dpc_write(values, image_with_dpc())), "@8c11*@8c22*@8c33*@8c44*");
  values.weights[1] = {-51, 300};
  limit_weights(values);
  EXPECT_EQ(values.weights[1], (AwbWeights{-50, 50}));
  EXPECT_EQ(frames(weights_write(values, 1)), "@30ff*@30ce*@3000*@3032*");
  values.hue_angle = -45;
  EXPECT_EQ(frames(hue_write(values)), "@605a*");
  EXPECT_EQ(frames(number_write(values, kDynamicNumbers[5])), "@3c10*");
}

TEST(Dynamic, BanksFollowTheIrLedBeforeTheVideoMode) {
  for (int mode : {0, 1, 2, 3, 77}) EXPECT_EQ(selected_bank(true, mode), BankId::IrLed);
  EXPECT_EQ(selected_bank(false, 0), BankId::Tvi);
  EXPECT_EQ(selected_bank(false, 1), BankId::Ahd);
  EXPECT_EQ(selected_bank(false, 2), BankId::Cvi);
  EXPECT_EQ(selected_bank(false, 3), BankId::Cvbs);
  EXPECT_EQ(selected_bank(false, video_mode_of_format(14)), std::nullopt);
}

TEST(Dynamic, LightSourceBarMakesKindAndValue) {
  EXPECT_EQ(light_source_from_bar(-20, {2, 5}), (LightSource{0, 20}));
  EXPECT_EQ(light_source_from_bar(20, {0, 5}), (LightSource{1, 20}));
  EXPECT_EQ(light_source_from_bar(20, {2, 5}), (LightSource{2, 20}));
  EXPECT_EQ(light_source_bar({0, 250}), -250);
  EXPECT_EQ(light_source_bar({2, 255}), 250);
}

TEST(StepTable, OnePassForwardAgainstTheUncorrectedNextStep) {
  const StepRowWrite nr = write_step_row(BankId::IrLed, kRowNr, {9, 3, 5, 4, 2, 300, -1});
  // 9>3 -> 3; 3; 5>4 -> 4; 4>2 -> 2; 2; 255>0 -> 0; the last is not below it.
  EXPECT_EQ(nr.bytes, (StepBytes{3, 3, 4, 2, 2, 0, 0}));
  EXPECT_EQ(
      on_wire(nr.traffic),
      "@4100*|@4b03*|@4101*|@4b03*|@4102*|@4b04*|@4103*|@4b02*|@4104*|@4b02*|@4105*|@4b00*|@4106*|@4b00*|");
  const StepMessage above{"NR Control", "At least must be equal or smaller than next step value."};
  EXPECT_EQ(nr.messages, (std::vector<StepMessage>{above, above, above, above}));

  // Lowering 7 to 2 leaves it below the 6 before it, which a single pass does not mend.
  const StepRowWrite flat = write_step_row(BankId::Tvi, kRowFlatNr, {6, 6, 7, 2, 3, 8, 8});
  EXPECT_EQ(flat.bytes, (StepBytes{6, 6, 2, 2, 3, 8, 8}));
  const StepRowWrite last = write_step_row(BankId::Tvi, kRowFlatNr, {0, 0, 0, 0, 0, 5, 4});
  EXPECT_EQ(last.bytes, (StepBytes{0, 0, 0, 0, 0, 4, 4}));
  EXPECT_TRUE(write_step_row(BankId::Tvi, kRowContrast, {9, 3, 5, 4, 2, 3, 1}).messages.empty());
}

TEST(StepTable, CellsAreLimitedAndEncoded) {
  EXPECT_EQ(encode_step_row(kRowIso, {77, -1, 0, 250, 251, 1, 2}), (StepBytes{1, 0, 0, 250, 250, 1, 2}));
  EXPECT_EQ(encode_step_row(kRowBright, {-65, -64, 0, 191, 192, 1, 2})[0], 0);
  EXPECT_EQ(encode_step_row(kRowContrast, {-16, 32, -17, 33, 0, 1, -1}),
            (StepBytes{80, 32, 80, 32, 64, 63, 65}));
  EXPECT_EQ(decode_step_row(kRowContrast, {80, 32, 0, 255, 64, 63, 65}),
            (StepCells{-16, 32, 64, -191, 0, 1, -1}));
  EXPECT_EQ(decode_step_row(kRowIso, StepBytes{})[0], 1) << "the offset always shows 1";
}

}  // namespace
}  // namespace qv5123
