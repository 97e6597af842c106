// The main form's page "Compare", which is made of what the form knows of all others.
#include <chrono>
#include <utility>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "state/ui/compare_page.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// How long a page that was just opened may read itself from the chip.
constexpr milliseconds kLoadPatience{3000};
constexpr milliseconds kLook{50};

}  // namespace

PageFactories CQV5123View::with_compare(PageFactories factories) {
  factories.emplace(PageId::compare, [this](PageHost&) {
    auto page = std::make_unique<ComparePage>(ComparePage::Surroundings{
        *this, values_, [this] { return history_; }, [this](std::size_t page) { return open_behind(page); },
        [this] { emit moment_wanted(); }});
    Page* side = page.get();
    return CreatedPage{std::move(page), side};
  });
  return factories;
}

Task<> CQV5123View::open_behind(std::size_t page) {
  if (values_.desk(page)) co_return;
  const std::optional<PageId> shown = pages_->current();
  pages_->choose(tuning_page_id(values_.page_name(page)));
  if (shown) pages_->choose(*shown);
  // What it reads now would otherwise come over what it is given.
  const TuningDesk* desk = values_.desk(page);
  for (milliseconds waited{0}; desk && desk->loading() && waited < kLoadPatience; waited += kLook)
    co_await Delay(scheduler(), kLook);
}

void CQV5123View::compare_with(const KnownValues& then, const std::string& when) {
  pages_->choose(PageId::compare);
  if (auto* page = dynamic_cast<ComparePage*>(pages_->page(PageId::compare)))
    page->compare_with(values_in_journal(values_, then, "Chip at " + when));
}

}  // namespace qv5123
