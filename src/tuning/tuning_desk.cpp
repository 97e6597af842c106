#include "tuning/tuning_desk.h"

#include "tuning/page_flows.h"

namespace qv5123 {

void TuningDesk::reload() {
  model_.load(image_);
  values_loaded();
  view_->show_values();
}

void TuningDesk::load_file() {
  reload();
  host_.show_status(model_.texts().loaded_file);
}

Task<bool> TuningDesk::load_from_chip() {
  PageLoad load{model_.texts().trigger, model_.texts().failed, model_.texts().loaded,
                [this](std::string_view reply) {
                  view_->take_typed();
                  const bool taken = model_.take_reply(reply);
                  if (!taken) return false;
                  taken_reply();
                  values_loaded();
                  view_->show_values();
                  return true;
                }};
  co_return co_await qv5123::load_from_chip(host_, std::move(load));
}

Task<bool> TuningDesk::send_save(FullSave save, std::string done) {
  LongTraffic on_chip;
  on_chip.traffic = std::move(save.traffic);
  on_chip.settling = save.settling;
  on_chip.done = std::move(done);
  const bool saved = co_await send_with_progress(host_, std::move(on_chip));
  co_await after_save();
  co_return saved;
}

Task<> TuningDesk::run_send(std::string what, Traffic traffic) {
  std::size_t writes = 0;
  for (const Batch& batch : traffic) writes += batch.size();
  const JobResult result = co_await link().send(std::move(traffic));
  if (result.failed || result.cancelled)
    host_.show_status(what + ": not all of it reached the chip");
  else
    host_.show_status(what + ": " + std::to_string(writes) +
                      (writes == 1 ? " register sent" : " registers sent"));
}

}  // namespace qv5123
