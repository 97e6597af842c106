// What a sign-off report says of the tuning pages.
#include <array>

#include "state/sign_off_values.h"
#include "tuning/awb_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

/// What the menu calls the pages, in the order of kTuningPages.
constexpr std::array<const char*, std::size(kTuningPages)> kTitles{
    "ISPTune", "AWBTune", "DynamicControl", "Gamma", "LinearMatrix", "LSC"};

const char* known_text(const FieldInfo& field, Known how) {
  switch (how) {
    case Known::sent:
      return "sent";
    case Known::read:
      return "read";
    case Known::verified:
      return "verified";
    case Known::nothing:
      break;
  }
  return field.has_reply() ? "" : kNeverReported;
}

SignOffValue value_of(const FieldInfo& field, const ValueState& state) {
  SignOffValue value{field.name, field.caption.caption(), state.page, {}, state.file, {}};
  if (state.chip.how != Known::nothing) value.chip = state.chip.number;
  value.known = known_text(field, state.chip.how);
  return value;
}

void take_chart(SignOff& report, const MatrixValues& values) {
  report.chart = patch_report(values.measured, values.coefficients);
  report.chart_of = matrix_place_text(values);
}

}  // namespace

std::string matrix_place_text(const MatrixValues& values) {
  if (values.mode < 0 || values.mode >= kVideoModes || values.light < 0 || values.light >= kMatrixLights)
    return {};
  return std::string(kMatrixModeNames[static_cast<std::size_t>(values.mode)]) + ", " +
         kMatrixLightNames[static_cast<std::size_t>(values.light)];
}

std::vector<SignOffPage> sign_off_pages(const ValueStates& values) {
  std::vector<SignOffPage> pages;
  for (std::size_t page = 0; page < values.pages(); ++page) {
    SignOffPage& shown = pages.emplace_back(SignOffPage{values.page_name(page), kTitles[page], {}});
    const std::vector<ValueState> states = values.states(page);
    for (std::size_t i = 0; i < states.size(); ++i)
      shown.values.push_back(value_of(values.fields(page)[i], states[i]));
  }
  return pages;
}

void take_desk(SignOff& report, const TuningDesk& desk) {
  if (const auto* matrix = dynamic_cast<const MatrixDesk*>(&desk)) take_chart(report, matrix->values());
  if (const auto* gamma = dynamic_cast<const GammaDesk*>(&desk)) report.gamma = gamma->values();
  if (const auto* awb = dynamic_cast<const AwbDesk*>(&desk)) report.awb = awb->values();
  const auto* lens = dynamic_cast<const LensDesk*>(&desk);
  if (!lens) return;
  report.lens = lens->calibration();
  report.field = lens->picture();
  report.parameter1 = lens->values().parameter1;
  report.parameter2 = lens->values().parameter2;
}

}  // namespace qv5123
