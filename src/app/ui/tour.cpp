#include "app/ui/tour.h"

#include <QDialog>
#include <QPixmap>
#include <array>

#include "app/ui/console_view.h"
#include "app/ui/layout_check.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "base/ui/qt_text.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLook{50};
/// Looks in a row that must find everything quiet: an answer may still be on its way after the last write.
constexpr int kQuietLooks = 6;
/// Where values are edited before they are compared, and how many.
constexpr std::array kEdited{"lsc", "awb", "dynamic"};
constexpr std::size_t kEdits = 3;

}  // namespace

Tour::Tour(QWidget& window, CQV5123View& view, Plan plan)
    : window_(window), view_(view), plan_(std::move(plan)) {}

Task<std::vector<std::string>> Tour::run(std::function<std::unique_ptr<QDialog>()> port_dialog) {
  // The same pictures whatever the screen.
  window_.resize(plan_.size);
  if (!co_await settle([this] { return !view_.starting(); })) {
    faults_.push_back("The start does not come to an end.");
    co_return faults_;
  }
  for (const PageEntry& entry : kPageEntries) {
    if (entry.id == PageId::compare) {
      if (plan_.filled) co_await plan_.filled();
      co_await take_picture_of_marks();
    }
    if (view_.pages().available(entry.id)) co_await take_picture_of_page(entry.id);
  }
  const std::unique_ptr<QDialog> dialog = port_dialog();
  dialog->show();
  co_await settle([] { return true; });
  take_picture(*dialog, "port-dialog");
  co_return faults_;
}

Task<> Tour::take_picture_of_page(PageId id) {
  const char* name = kPageEntries[static_cast<std::size_t>(id)].name;
  view_.pages().choose(id);
  Page* page = view_.pages().page(id);
  page->read_back();
  if (!co_await settle([page] { return !page->loading(); }))
    faults_.push_back(std::string("Page '") + name + "' does not finish loading.");
  if (plan_.fill) {
    co_await plan_.fill(id);
    co_await settle([] { return true; });
  }
  take_picture(window_, name);
}

/// A few values become others than the chip's, so that there is something to mark and to compare.
Task<> Tour::take_picture_of_marks() {
  for (const char* page : kEdited) edit_values(page);
  view_.pages().choose(PageId::lsc);
  co_await settle([] { return true; });
  take_picture(window_, "marks");
}

void Tour::edit_values(const char* page) {
  TuningDesk* desk = view_.values().desk(view_.values().page_named(page));
  if (!desk) return;
  const std::vector<int> numbers = desk->model().numbers();
  std::vector<WriteNote::Value> values;
  for (std::size_t i = 0; i < numbers.size() && values.size() < kEdits; ++i) {
    const FieldInfo& field = desk->model().fields()[i];
    if (field.sent_by == Field::kNowhere) continue;
    values.push_back({i, numbers[i] == field.range.highest ? numbers[i] - 1 : numbers[i] + 1});
  }
  desk->take_values("Tour", values);
}

Task<bool> Tour::settle(std::function<bool()> settled) {
  Scheduler& scheduler = view_.link().scheduler();
  const auto end = scheduler.now() + kPatience;
  for (int quiet_looks = 0; quiet_looks < kQuietLooks;) {
    if (scheduler.now() > end) co_return false;
    co_await Delay(scheduler, kLook);
    quiet_looks = settled() && quiet() ? quiet_looks + 1 : 0;
  }
  co_return true;
}

bool Tour::quiet() const {
  return view_.link().jobs_waiting() == 0 && view_.console().settled();
}

void Tour::take_picture(QWidget& widget, const char* name) {
  const QString path = path_to_qt(plan_.folder / (std::string(name) + ".png"));
  if (!widget.grab().save(path, "PNG"))
    faults_.push_back(std::string("Cannot save the picture of '") + name + "'.");
  if (!plan_.check_layout) return;
  for (const std::string& fault : layout_faults(widget)) faults_.push_back(std::string(name) + ": " + fault);
}

}  // namespace qv5123
