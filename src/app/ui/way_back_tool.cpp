#include "app/ui/way_back_tool.h"

#include <utility>

#include "app/ui/qv5123_view.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

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
  const SendingSum sum = sum_of(way);
  Question question = careful_question(way_back_question(way, sum, unnamed), "Back to " + when);
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer != Answer::yes) co_return;
  for (const WayBack::Page& page : way.pages) co_await send(page, "Back to " + when);
}

/// Counted on a desk of its own, so that no page changes before the user agrees.
SendingSum WayBackTool::sum_of(const WayBack& way) {
  SendingSum sum;
  CQV5123Doc document = view_.document();
  for (const WayBack::Page& page : way.pages) {
    const auto desk = make_desk(view_.values().page_name(page.page), view_, document);
    for (const WayBack::Value& value : page.values) desk->model().set_number(value.field, value.then);
    sum.add(desk->own_traffic(page.fields()));
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
