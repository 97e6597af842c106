// What a sign-off report says of the tuning pages.
#include <algorithm>
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
static_assert(kTitles.back() != nullptr, "every page has its title");

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

void judge(SignOffValue& value, const FieldInfo& field) {
  value.judged = value.chip;
  if (!value.chip && !field.sendable() && !field.has_reply()) value.judged = value.page;
  if (!value.judged || !value.file) return;
  value.unlike_file = value.chip ? *value.chip != field.held_by_chip(*value.file)
                                 : field.held_by_file(*value.judged) != field.held_by_file(*value.file);
}

SignOffValue value_of(const FieldInfo& field, const ValueState& state) {
  SignOffValue value{field.name, field.caption.caption(), state.page, {}, state.file, {}};
  if (state.chip.how != Known::nothing) value.chip = state.chip.number;
  value.known = known_text(field, state.chip.how);
  judge(value, field);
  return value;
}

/// Whether the chip is known to hold what the page's desk holds in these fields.
bool on_chip(const TuningDesk& desk, const ValueStates& values, const std::vector<std::size_t>& fields) {
  const std::size_t page = values.page_named(desk.model().texts().name);
  return std::ranges::all_of(fields, [&](std::size_t field) {
    const ValueState state = values.state(page, field);
    return state.chip.how != Known::nothing && state.page &&
           values.fields(page)[field].held_by_chip(*state.page) == state.chip.number;
  });
}

void take_chart(SignOff& report, const MatrixDesk& desk, const ValueStates& values) {
  const MatrixValues& matrix = desk.values();
  report.measured = matrix.measured;
  report.chart = patch_report(matrix.measured, matrix.coefficients);
  report.chart_of = matrix_place_text(matrix);
  if (report.chart_of.empty()) return;
  std::vector<std::size_t> fields;
  for (const auto& row : matrix.tables[static_cast<std::size_t>(matrix.mode)])
    for (const int& code : row[static_cast<std::size_t>(matrix.light)]) fields.push_back(desk.field(code));
  report.chart_on_chip = on_chip(desk, values, fields);
}

void take_lens(SignOff& report, const LensDesk& desk, const ValueStates& values) {
  report.lens = desk.calibration();
  if (desk.picture().size() == kFieldPlaces) report.field = desk.picture();
  report.parameter1 = desk.values().parameter1;
  report.parameter2 = desk.values().parameter2;
  std::vector<std::size_t> fields;
  for (const PerColour* row : {&desk.values().parameter1, &desk.values().parameter2})
    for (const int& parameter : *row) fields.push_back(desk.field(parameter));
  report.lens_on_chip = on_chip(desk, values, fields);
}

}  // namespace

std::string matrix_place_text(const MatrixValues& values) {
  if (values.mode < 0 || values.mode >= kVideoModes || values.light < 0 || values.light >= kLightSources)
    return {};
  return std::string(kVideoModeNames[static_cast<std::size_t>(values.mode)]) + ", " +
         kLightSourceNames[static_cast<std::size_t>(values.light)];
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

void take_desk(SignOff& report, const TuningDesk& desk, const ValueStates& values) {
  if (const auto* matrix = dynamic_cast<const MatrixDesk*>(&desk)) take_chart(report, *matrix, values);
  if (const auto* gamma = dynamic_cast<const GammaDesk*>(&desk)) report.gamma = gamma->values();
  if (const auto* awb = dynamic_cast<const AwbDesk*>(&desk)) report.awb = awb->values();
  if (const auto* lens = dynamic_cast<const LensDesk*>(&desk)) take_lens(report, *lens, values);
}

}  // namespace qv5123
