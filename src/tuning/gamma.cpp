#include "tuning/gamma.h"

#include <algorithm>

#include "tuning/full_save.h"

namespace qv5123 {
namespace {

constexpr std::uint8_t kChannelRegister = 0x06;

constexpr std::uint8_t curve_register(GammaCurveId id) {
  constexpr std::uint8_t kRegisters[] = {0x03, 0x04, 0x05};
  return kRegisters[id];
}

Traffic curve_traffic(const GammaValues& values, GammaCurveId id) {
  Traffic traffic;
  for (int point : values.curve(id)) traffic.push_back(word_write(curve_register(id), point));
  return traffic;
}

Traffic curves_traffic(const GammaValues& values, const std::vector<GammaCurveId>& ids) {
  Traffic traffic;
  for (GammaCurveId id : ids) {
    if (id != kFrontCurve) append(traffic, curve_traffic(values, id));
  }
  return traffic;
}

}  // namespace

std::vector<GammaCurveId> selected_curves(GammaChannel channel) {
  switch (channel) {
    case kGammaGreen:
      return {kGreenCurve};
    case kGammaBlue:
      return {kBlueCurve};
    case kGammaRed:
      return {kRedCurve};
    case kGammaRgb:
      return {kRedCurve, kGreenCurve, kBlueCurve};
    case kGammaFront:
      return {kFrontCurve};
  }
  return {};
}

int spin_gamma_point(int current, int delta) {
  const long long moved = static_cast<long long>(current) + delta;
  return static_cast<int>(std::clamp<long long>(moved, 0, kGammaMaximum));
}

void save_to_user_data(const GammaValues& values, UserDataImage& image) {
  ImageWriter writer(image);
  gamma_image_layout(values, writer);
}

void reload_from_user_data(GammaValues& values, const UserDataImage& image) {
  if (!image.loaded()) {
    values.curves = {};
    return;
  }
  ImageReader reader(image);
  gamma_front_image_layout(values, reader);
  gamma_image_layout(values, reader);
  values.loaded_channel = values.channel;
}

std::optional<GammaValues> decode_gamma_reply(std::string_view reply, GammaValues current) {
  ReplyReader reader(reply);
  gamma_reply_layout(current, reader);
  if (reader.short_of()) return std::nullopt;
  return current;
}

std::string encode_gamma_reply(const GammaValues& values) {
  ReplyWriter writer;
  gamma_reply_layout(values, writer);
  return writer.text();
}

Traffic gamma_apply(const GammaValues& values) {
  return curves_traffic(values, selected_curves(values.channel));
}

Traffic gamma_full_save(const GammaValues& values) {
  Traffic body = curves_traffic(values, selected_curves(kGammaRgb));
  append(body, RegisterWrite{kChannelRegister, low_byte(values.loaded_channel)});
  return full_save(std::move(body));
}

}  // namespace qv5123
