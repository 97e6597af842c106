#include <utility>

#include "base/text.h"
#include "provision/desk_measurements.h"
#include "provision/unit.h"
#include "tuning/brackets.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {

/// The chip is not left in the middle of a save that was given up.
Task<> Unit::end_stopped_save() {
  if (!stopped_) co_return;
  const Traffic closing = closing_pair();
  for (const Batch& flush : closing) co_await send(flush);
  throw StepFailed{"Interrupted: the chip has only a part of the page"};
}

Task<> Unit::send_save(TuningDesk& desk) {
  around_.host.forget_failure();
  const bool saved = co_await desk.send_save(desk.full_save(), std::string());
  co_await end_stopped_save();
  if (!saved || !around_.host.last_failure().empty()) throw StepFailed{around_.host.last_failure()};
}

/// What the chip reports afterwards is what was sent, or what differs is sent again.
Task<> Unit::save_verified(TuningDesk& desk, int repair) {
  check_stop();
  co_await send_save(desk);
  Verification found = co_await desk.verify_save(around_.timeout);
  for (; repair > 0 && !found.to_repair().empty(); --repair) {
    check_stop();
    ++step_record().retries;
    found = co_await desk.repair_save(std::move(found), 1, around_.timeout);
    co_await end_stopped_save();
  }
  if (found.end != Verification::End::verified)
    throw StepFailed{std::string(desk.model().texts().name) + ": " +
                     verification_text(desk.model().fields(), found)};
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
  const LensMeasurement measured = co_await measure_lens(around_.host, desk, step.doubtful);
  if (!measured.trouble.empty()) throw StepFailed{measured.trouble};
  const LensFit& fit = desk.calibration().fit;
  step_record().values = {{"centre", desk.calibration().centre.x},
                          {"parameter1", fit.parameter1},
                          {"parameter2", fit.parameter2},
                          {"ripple_before", measured.ripple_before},
                          {"ripple", measured.ripple}};
  if (step.most_ripple && measured.ripple > *step.most_ripple)
    throw StepFailed{"the ripple is " + fixed(measured.ripple, 1) + " %, at most " +
                     shortest(*step.most_ripple) + " is allowed"};
  if (step.save) co_await save_verified(desk, PagesStep().repair);
}

Task<> Unit::do_step(const MatrixStep& step) {
  MatrixDesk desk(around_.host, document_.user_data);
  co_await load_page(desk);
  desk.choose_light(step.light);
  desk.choose_mode(step.mode);
  desk.type_ratio(step.ratio);
  const MatrixMeasurement measured =
      co_await measure_matrix(around_.host, desk, step.place, true, step.doubtful);
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
