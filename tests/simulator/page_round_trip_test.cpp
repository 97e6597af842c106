#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "support/chip_talk.h"
#include "support/random_settings.h"
#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix.h"

using namespace qv5123;

namespace {

/// A chip that pages load from and save to.
class PageRoundTrip : public testing::TestWithParam<unsigned> {
 protected:
  int any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
  void send(const Traffic& traffic) {
    for (const Batch& batch : traffic) EXPECT_EQ(test::ask(chip, frames(batch)), "");
  }
  /// What stands in the reply block that `trigger` brings.
  std::string load(std::uint8_t trigger) {
    const std::string block = test::ask(chip, frame({trigger, 0}));
    EXPECT_TRUE(block.size() >= 2 && block.front() == '~' && block.back() == '^') << block;
    return block.substr(1, block.size() - 2);
  }
  /// The user data as the page keeps them must be what the chip now keeps, in force and for good.
  template <class Values>
  void expect_kept(const Values& values) {
    UserDataImage image = chip.state().factory_data;
    save_to_user_data(values, image);
    EXPECT_EQ(image, chip.state().user_data);
    EXPECT_EQ(image, chip.state().kept_data);
  }
  /// What a page shows of the chip's own settings.
  template <class Values>
  Values shown() const {
    UserDataImage image = chip.state().user_data;
    image.mark_loaded();
    Values values;
    reload_from_user_data(values, image);
    return values;
  }

  std::mt19937 random{GetParam()};
  test::ListeningChip chip;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Seeds, PageRoundTrip, testing::Range(1u, 6u));

TEST_P(PageRoundTrip, Gamma) {
  auto values = shown<GammaValues>();
  EXPECT_EQ(load(kGammaLoadTrigger), encode_gamma_reply(values)) << "a page shows the defaults either way";
  for (const auto id : {kRedCurve, kGreenCurve, kBlueCurve}) {
    for (int& point : values.curves[id]) point = any(0, kGammaMaximum);
  }
  values.channel = values.loaded_channel = static_cast<GammaChannel>(any(0, 4));
  send(gamma_full_save(values));
  expect_kept(values);
  EXPECT_EQ(decode_gamma_reply(load(kGammaLoadTrigger), values), values);
}

TEST_P(PageRoundTrip, Awb) {
  auto values = shown<AwbValues>();
  EXPECT_EQ(load(kAwbQuery), encode_awb_reply(values));
  for (std::size_t i = 0; i < kAwbWordCount; ++i)
    values.words[i] = i < 8 ? any(-kAwbLineLimit, kAwbLineLimit) : any(-32768, 32767);
  send(awb_save_traffic(values));
  expect_kept(values);
  EXPECT_EQ(decode_awb_reply(load(kAwbQuery), values), values);
}

TEST_P(PageRoundTrip, Dynamic) {
  auto values = shown<DynamicValues>();
  EXPECT_EQ(load(kDynamicQuery), encode_dynamic_reply(values));
  values = test::random_dynamic_values(random);
  values.video_mode = 0;
  for (StepBank& bank : values.banks) {
    for (std::size_t row = 0; row < kStepRows; ++row) {
      for (std::uint8_t& byte : bank[row]) byte = static_cast<std::uint8_t>(any(32, 80));
      std::sort(bank[row].begin(), bank[row].end());
    }
    bank[kRowIso][0] = 1;
  }
  const DynamicSave save = dynamic_save(values, decode_step_bank(values.banks[0]), chip.state().user_data);
  EXPECT_TRUE(save.messages.empty());
  send(save.traffic);
  expect_kept(values);
  EXPECT_EQ(decode_dynamic_reply(load(kDynamicQuery), values), values);
}

TEST_P(PageRoundTrip, Matrix) {
  auto values = shown<MatrixValues>();
  EXPECT_EQ(load(kMatrixLoadTrigger), encode_matrix_reply(values));
  for (ModeTable& table : values.tables) {
    for (auto& row : table) {
      for (MatrixRowBytes& bytes : row) {
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(any(0, 255));
      }
    }
  }
  send(matrix_full_save(values));
  expect_kept(values);
  const auto loaded = decode_matrix_reply(load(kMatrixLoadTrigger), values);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(loaded->tables, values.tables);
}

TEST_P(PageRoundTrip, LensShading) {
  auto values = shown<LensValues>();
  EXPECT_EQ(load(0x6B), encode_lens_reply(values));
  for (int& parameter : values.parameter1) parameter = any(0, kLensParameterMaximum);
  for (int& parameter : values.parameter2) parameter = any(0, kLensParameterMaximum);
  send(lens_full_save(values));
  expect_kept(values);
  EXPECT_EQ(decode_lens_reply(load(0x6B), values), values);
}

TEST_P(PageRoundTrip, Front) {
  auto values = shown<FrontValues>();
  const auto first = decode_front_reply(load(kFrontQuery), values);
  ASSERT_TRUE(first);
  values = *first;
  values.video_mode = any(0, 15);
  values.colour_order = any(0, 3);
  values.tdn_mode = any(0, 3);
  values.delay = any(0, 255);
  values.ir_on_off = any(0, 255);
  values.led_dimmer = any(0, 255);
  values.polarity = any(0, 1);
  for (int& clamp : values.clamp) clamp = any(0, 4095);
  values.wdr_state = any(0, 2);
  send(front_save_traffic(values));
  expect_kept(values);
  for (std::size_t flag = 0; flag < kFrontFlagCount; ++flag) {
    values.flags[flag] = any(0, 1) != 0;
    send({flag_write(static_cast<FrontFlag>(flag), values.flags[flag])});
  }
  values.color_suppress = any(0, 1) != 0;
  send({front_effect(FrontControl::ColorSuppress, values).writes});
  EXPECT_EQ(decode_front_reply(load(kFrontQuery), values), values);
}
