#include "app/ui/tour.h"

#include <QDialog>
#include <QPixmap>

#include "app/ui/console_view.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

constexpr QSize kPictureSize{1280, 800};
constexpr std::chrono::milliseconds kLook{50};
/// Looks in a row that must find everything quiet: an answer may still be on its way after the last write.
constexpr int kQuietLooks = 6;

}  // namespace

Tour::Tour(QWidget& window, CQV5123View& view, std::filesystem::path folder)
    : window_(window), view_(view), folder_(std::move(folder)) {}

Task<std::string> Tour::run(std::function<std::unique_ptr<QDialog>()> port_dialog) {
  // The same pictures whatever the screen.
  window_.resize(kPictureSize);
  if (!co_await settle([this] { return !view_.starting(); })) co_return "The start does not come to an end.";
  for (const PageEntry& entry : kPageEntries) {
    if (!view_.pages().available(entry.id)) continue;
    view_.pages().choose(entry.id);
    Page* page = view_.pages().page(entry.id);
    page->read_back();
    if (!co_await settle([page] { return !page->loading(); })) {
      co_return std::string("Page '") + entry.name + "' does not finish loading.";
    }
    if (!save(window_, entry.name)) co_return std::string("Cannot save the picture of '") + entry.name + "'.";
  }
  const std::unique_ptr<QDialog> dialog = port_dialog();
  dialog->show();
  co_await settle([] { return true; });
  if (!save(*dialog, "port-dialog")) co_return "Cannot save the picture of 'port-dialog'.";
  co_return "";
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

bool Tour::save(QWidget& widget, const char* name) {
  const QString path = path_to_qt(folder_ / (std::string(name) + ".png"));
  return widget.grab().save(path, "PNG");
}

}  // namespace qv5123
