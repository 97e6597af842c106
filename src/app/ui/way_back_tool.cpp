#include "app/ui/way_back_tool.h"

#include <chrono>
#include <utility>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// How long a page that was just opened may read itself from the chip.
constexpr milliseconds kLoadPatience{3000};
constexpr milliseconds kLook{50};

std::vector<WriteNote::Value> then_values(const WayBack::Page& page) {
  std::vector<WriteNote::Value> values;
  for (const WayBack::Value& value : page.values) values.push_back({value.field, value.then});
  return values;
}

}  // namespace

void WayBackTool::start(KnownValues then, std::size_t unnamed, std::string when) {
  if (!flow_.running()) flow_.start(run(std::move(then), unnamed, std::move(when)));
}

Task<> WayBackTool::run(KnownValues then, std::size_t unnamed, std::string when) {
  const WayBack way = way_back(then, view_.values());
  if (way.pages.empty()) {
    view_.say(StatusRank::outcome, "history", "Nothing that can be sent differs from " + when + ".");
    co_return;
  }
  const Sum sum = sum_of(way);
  Question question =
      careful_question(way_back_question(way, sum.writes, sum.flushes, unnamed), "Back to " + when);
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer != Answer::yes) co_return;
  for (const WayBack::Page& page : way.pages) co_await send(page, "Back to " + when);
}

/// Counted on a desk of its own, so that no page changes before the user agrees.
WayBackTool::Sum WayBackTool::sum_of(const WayBack& way) {
  Sum sum;
  CQV5123Doc document = view_.document();
  for (const WayBack::Page& page : way.pages) {
    const auto desk = make_desk(view_.values().page_name(page.page), view_, document);
    for (const WayBack::Value& value : page.values) desk->model().set_number(value.field, value.then);
    const Traffic traffic = desk->own_traffic(page.fields());
    sum.flushes += traffic.size();
    for (const Batch& flush : traffic) sum.writes += flush.size();
  }
  return sum;
}

Task<> WayBackTool::send(WayBack::Page page, std::string what) {
  co_await open_page(page.page);
  TuningDesk* desk = view_.values().desk(page.page);
  if (!desk) co_return;
  desk->take_values(what, then_values(page));
  co_await desk->bring_values(std::move(what), page.fields(), false);
}

Task<> WayBackTool::open_page(std::size_t page) {
  if (view_.values().desk(page)) co_return;
  const std::optional<PageId> shown = view_.pages().current();
  view_.pages().choose(tuning_page_id(view_.values().page_name(page)));
  if (shown) view_.pages().choose(*shown);
  // What it reads now would otherwise come over what it is given.
  const TuningDesk* desk = view_.values().desk(page);
  for (milliseconds waited{0}; desk && desk->loading() && waited < kLoadPatience; waited += kLook)
    co_await Delay(view_.scheduler(), kLook);
}

}  // namespace qv5123
