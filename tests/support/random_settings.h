#pragma once

#include <random>

#include "tuning/dynamic.h"

namespace qv5123::test {

/// Any settings that the DynamicControl page can show.
inline DynamicValues random_dynamic_values(std::mt19937& random) {
  const auto in = [&random](BarRange range) {
    return std::uniform_int_distribution<int>(range.lowest, range.highest)(random);
  };
  DynamicValues values;
  for (const DynamicNumber& number : kDynamicNumbers) values.*number.value = in(number.range);
  values.orientation = in({0, 3});
  for (StepBank& bank : values.banks)
    for (StepBytes& row : bank)
      for (std::uint8_t& byte : row) byte = static_cast<std::uint8_t>(in({0, 255}));
  for (std::size_t i = 0; i < kLightSources; ++i) {
    values.light_sources[i] = {in({0, 2}), in({0, 255})};
    values.saturation[i] = in(kSaturationRange);
    values.weights[i] = {in(kWeightRange), in(kWeightRange)};
  }
  values.hue_angle = in(kHueRange);
  values.dpc_decision = in(kDpcRange);
  values.smart_ir = in({0, 3});
  values.video_mode = in({0, 3});
  return values;
}

}  // namespace qv5123::test
