#include "tuning/gamma.h"

#include <algorithm>

#include "tuning/brackets.h"

namespace qv5123 {
namespace {

Traffic curves_traffic(const GammaValues& values, const std::vector<GammaCurveId>& ids) {
  Traffic traffic;
  for (GammaCurveId id : ids) append(traffic, gamma_curve_traffic(values, id));
  return traffic;
}

}  // namespace

std::vector<GammaCurveId> selected_curves(GammaChannel channel) {
  switch (channel) {
    case GammaChannel::green:
      return {GammaCurveId::green};
    case GammaChannel::blue:
      return {GammaCurveId::blue};
    case GammaChannel::red:
      return {GammaCurveId::red};
    case GammaChannel::rgb:
      return {kEndGammaCurves.begin(), kEndGammaCurves.end()};
    case GammaChannel::front:
      return {GammaCurveId::front};
  }
  return {};
}

int spin_gamma_point(int current, int delta) {
  const long long moved = static_cast<long long>(current) + delta;
  return static_cast<int>(std::clamp<long long>(moved, 0, kGammaMaximum));
}

void GammaPage::load(GammaValues& values, const UserDataImage& image) {
  if (!image.loaded()) {
    values.curves = {};
    return;
  }
  load_fields<GammaPage>(values, image);
  values.loaded_channel = values.channel;
}

Traffic gamma_curve_traffic(const GammaValues& values, GammaCurveId id) {
  Traffic traffic;
  if (id == GammaCurveId::front) return traffic;
  const auto address = static_cast<std::uint8_t>(kGammaCurveRegister + static_cast<int>(id));
  for (int point : values.curve(id)) traffic.push_back(word_write(address, point));
  return traffic;
}

Traffic gamma_apply(const GammaValues& values) {
  return curves_traffic(values, selected_curves(values.channel));
}

Traffic gamma_full_save(const GammaValues& values) {
  Traffic body = curves_traffic(values, selected_curves(GammaChannel::rgb));
  append(body, RegisterWrite{kGammaChannelRegister, low_byte(static_cast<int>(values.loaded_channel))});
  return saved(std::move(body));
}

}  // namespace qv5123
