#include <utility>

#include "base/text.h"
#include "provision/desk_measurements.h"
#include "provision/step_failed.h"
#include "provision/unit.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

/// The first values that differ, in words; empty when all that the page saves agree.
std::string differences(const TuningModel& chip, const std::vector<int>& sent) {
  constexpr std::size_t kNamed = 3;
  std::string text;
  std::size_t count = 0;
  const std::vector<int> numbers = chip.numbers();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = chip.fields()[i];
    if (!field.saved || !field.has_reply() || numbers[i] == sent[i]) continue;
    if (++count > kNamed) continue;
    text += (text.empty() ? "" : ", ") + std::string(chip.texts().name) + "." + field.name + ": chip " +
            std::to_string(numbers[i]) + ", sent " + std::to_string(sent[i]);
  }
  return count > kNamed ? text + " and " + std::to_string(count - kNamed) + " more" : text;
}

}  // namespace

/// The chip is not left in the middle of a save that was given up.
Task<> Unit::close_brackets() {
  co_await send(Batch(1, RegisterWrite{reg::kKeepBracket, 0}));
  co_await send(Batch(1, RegisterWrite{reg::kSaveBracket, 0}));
}

Task<> Unit::send_save(TuningDesk& desk) {
  around_.host.forget_failure();
  const bool saved = co_await desk.send_save(desk.full_save(), std::string());
  if (stopped_) {
    co_await close_brackets();
    throw StepFailed{"Interrupted: the chip has only a part of the page"};
  }
  if (!saved || !around_.host.last_failure().empty()) throw StepFailed{around_.host.last_failure()};
}

/// What the chip reports afterwards is what was sent, or the page is sent again.
Task<> Unit::save_verified(TuningDesk& desk, int repair) {
  for (int repaired = 0;; ++repaired) {
    check_stop();
    co_await send_save(desk);
    const std::vector<int> sent = desk.model().numbers();
    const std::unique_ptr<TuningModel> chip = make_model(desk.model().texts().name);
    co_await read_page(*chip);
    std::string difference = differences(*chip, sent);
    if (difference.empty()) co_return;
    if (repaired == repair) throw StepFailed{difference};
    ++step_record().retries;
  }
}

Task<> Unit::save_page(const std::string& name, int repair) {
  const std::unique_ptr<TuningDesk> desk = make_desk(name, around_.host, document_);
  desk->model().load_all(document_.user_data);
  co_await save_verified(*desk, repair);
}

Task<> Unit::do_step(const PagesStep& step) {
  for (const std::string& page : step.pages) co_await save_page(page, step.repair);
}

/// What the page has besides what is measured is the chip's.
Task<> Unit::load_page(TuningDesk& desk) {
  co_await read_page(desk.model());
}

Task<> Unit::do_step(const LensStep& step) {
  LensDesk desk(around_.host, document_.user_data);
  co_await load_page(desk);
  desk.choose_screen(step.screen);
  desk.move_ratio(step.ratio);
  const LensMeasurement measured = co_await measure_lens(around_.host, desk);
  if (!measured.trouble.empty()) throw StepFailed{measured.trouble};
  const LensFit& fit = desk.calibration().fit;
  step_record().values = {{"centre", desk.calibration().centre.x},
                          {"parameter1", fit.parameter1},
                          {"parameter2", fit.parameter2},
                          {"ripple", measured.ripple}};
  for (const double ripple : measured.ripple)
    if (step.most_ripple && ripple > *step.most_ripple)
      throw StepFailed{"the ripple is " + fixed(ripple, 1) + " %, at most " + shortest(*step.most_ripple) +
                       " is allowed"};
  if (step.save) co_await save_verified(desk, PagesStep().repair);
}

Task<> Unit::do_step(const MatrixStep& step) {
  MatrixDesk desk(around_.host, document_.user_data);
  co_await load_page(desk);
  desk.choose_light(step.light);
  desk.choose_mode(step.mode);
  desk.type_ratio(step.ratio);
  const MatrixMeasurement measured = co_await measure_matrix(around_.host, desk, step.place, true);
  if (!measured.trouble.empty()) throw StepFailed{measured.trouble};
  const DifferenceSummary& after = measured.report->after;
  step_record().values = {{"measured", desk.values().measured},
                          {"coefficients", desk.values().coefficients},
                          {"mean", after.mean},
                          {"worst", after.worst}};
  if (step.most_mean && after.mean > *step.most_mean)
    throw StepFailed{"the mean colour difference is " + fixed(after.mean, 2) + ", at most " +
                     shortest(*step.most_mean) + " is allowed"};
  if (step.most_worst && after.worst > *step.most_worst)
    throw StepFailed{"the worst colour difference is " + fixed(after.worst, 2) + ", at most " +
                     shortest(*step.most_worst) + " is allowed"};
  if (step.save) co_await save_verified(desk, PagesStep().repair);
}

}  // namespace qv5123
