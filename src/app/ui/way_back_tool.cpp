#include "app/ui/way_back_tool.h"

#include <utility>

#include "app/ui/qv5123_view.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

std::vector<WriteNote::Value> then_values(const WayBack::Page& page) {
  std::vector<WriteNote::Value> values;
  for (const auto* some : {&page.values, &page.neighbours})
    for (const WayBack::Value& value : *some) values.push_back({value.field, value.then});
  return values;
}

/// Whom a desk tells what it would send.
class Rehearsal final : public DeskHost {
 public:
  explicit Rehearsal(CommandLink& link) : link_(link) {}
  const Traffic& traffic() const { return traffic_; }
  /// What the chip would hold afterwards.
  const std::vector<WriteNote::Value>& values() const { return values_; }

  CommandLink& link() override { return link_; }
  void show_status(const std::string&) override {}
  void append_console(const std::string&) override {}
  void send_and_tell(const std::string&, Traffic traffic, std::shared_ptr<const WriteNote> note) override {
    traffic_ = std::move(traffic);
    values_ = note->values;
  }
  void show_progress(std::optional<int>) override {}
  void set_busy(bool) override {}

 private:
  CommandLink& link_;
  Traffic traffic_;
  std::vector<WriteNote::Value> values_;
};

}  // namespace

void WayBackTool::start(KnownValues then, std::size_t unnamed, std::string when) {
  if (!flow_.running()) flow_.start(run(std::move(then), unnamed, std::move(when)));
}

Task<> WayBackTool::run(KnownValues then, std::size_t unnamed, std::string when) {
  WayBack way = way_back(then, view_.values());
  if (way.pages.empty()) {
    view_.say(StatusRank::outcome, "history", "Nothing that can be sent differs from " + when + ".");
    co_return;
  }
  const SendingSum sum = rehearse(way, then);
  Question question = careful_question(way_back_question(way, sum, unnamed), "Back to " + when);
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer != Answer::yes) co_return;
  for (const WayBack::Page& page : way.pages) co_await send(page, "Back to " + when);
}

/// On desks of its own, so that no page changes before the user agrees.
SendingSum WayBackTool::rehearse(WayBack& way, const KnownValues& then) {
  SendingSum sum{.frame = view_.link().health().frame_time()};
  CQV5123Doc document = view_.document();
  for (WayBack::Page& page : way.pages) {
    Rehearsal host(view_.link());
    const auto desk = make_desk(view_.values().page_name(page.page), host, document);
    for (const WayBack::Value& value : page.values) desk->model().set_number(value.field, value.then);
    desk->send_values({}, page.fields(), false);
    add_neighbours(way, page, host.values(), then, view_.values());
    sum.add(host.traffic());
  }
  return sum;
}

Task<> WayBackTool::send(WayBack::Page page, std::string what) {
  co_await view_.open_behind(page.page);
  TuningDesk* desk = view_.values().desk(page.page);
  if (!desk) co_return;
  desk->take_values(what, then_values(page));
  co_await desk->bring_values(std::move(what), page.fields(), false);
}

}  // namespace qv5123
