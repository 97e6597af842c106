#include "window_measurements.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>

#include "app/ui/console_view.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "registers/ui/dlg_isp_register.h"
#include "tuning/gamma_chart.h"
#include "tuning/ui/gamma_chart_view.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kPatience{180'000};
/// The one pacing between a save's writes.
constexpr double kPacing = 50;

/// Calls `look` every `interval` until it returns true.
void every(int interval, std::function<bool()> look) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, look = std::move(look)] {
    if (!look()) return;
    timer->stop();
    timer->deleteLater();
  });
  timer->start(interval);
}

QWidget& shown_page(Bench& bench, PageId id) {
  bench.view.pages().choose(id);
  return *bench.view.pages().page_widget(id);
}

void load_all(Bench& bench) {
  auto* load = button(bench.view, "Load All From ISP");
  load->click();
  watch(bench, "load_all_worst_gap", [load] { return load->isEnabled(); });
}

/// As much text as the receive queue hands over at once, every turn, until 10 MB have come.
void console(Bench& bench) {
  std::string text;
  while (text.size() < 8000) text += "AE: gain 12 target 40 speed 3, a line of text from the chip\r\n";
  auto sent = std::make_shared<std::size_t>(0);
  every(0, [&bench, text, sent] {
    bench.view.take_received(text);
    *sent += text.size();
    return *sent >= 10'000'000;
  });
  watch(bench, "console_worst_gap",
        [&bench, sent] { return *sent >= 10'000'000 && bench.view.console().settled(); });
}

void description(Bench& bench) {
  QElapsedTimer clock;
  clock.start();
  const auto page = std::make_shared<CDlgIspRegister>(bench.view);
  page->resize(900, 650);
  const auto* categories = page->findChild<QComboBox*>();
  // It opens at once and is filled when the file is read.
  every(0, [clock, page, categories]() -> bool {
    if (categories->count() == 0) return false;
    page->grab();
    finish("parse_and_show_description", static_cast<double>(clock.nsecsElapsed()) / 1e6, "ms");
  });
}

/// The page's full save, with the time between its writes over what their pacing, and the wait after each
/// wide access, sum up to.
void save(Bench& bench, PageId id, const std::string& name) {
  auto* save = button(shown_page(bench, id), "File/Flash Save");
  every(20, [&bench, name, save, loaded = link_quiet(bench)]() mutable {
    if (!loaded()) return false;
    bench.device.start_over();
    save->click();
    watch(bench, "save_" + name + "_worst_gap", [&bench, name, save, sent = link_quiet(bench)]() mutable {
      if (!save->isEnabled() || !sent()) return false;
      const int writes = bench.device.writes();
      if (writes < 2) give_up("the save did not leave");
      print_figure("save_" + name + "_writes", writes, "writes");
      const double waits = bench.device.wide_accesses() * static_cast<double>(CommandLink::kWideWait.count());
      print_figure("save_" + name + "_time_over_pacing",
                   bench.device.elapsed() / ((writes - 1) * kPacing + waits), "x");
      return true;
    });
    return true;
  });
}

void calibration(Bench& bench) {
  auto* start = button(shown_page(bench, PageId::lsc), "CALIBRATION");
  start->click();
  watch(bench, "calibration_worst_gap", [&bench, over = link_quiet(bench)]() mutable {
    if (!over()) return false;
    print_figure("calibration_writes", bench.device.writes(), "writes");
    return true;
  });
}

void send_mouse(QWidget* widget, QEvent::Type type, QPointF at) {
  QMouseEvent event(type, at, widget->mapToGlobal(at), Qt::LeftButton,
                    type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(widget, &event);
}

/// Three seconds of dragging the middle of the curves up and down, a move every 4 ms.
void drag(Bench& bench) {
  auto* chart = shown_page(bench, PageId::gamma).findChild<GammaChartView*>();
  every(20, [&bench, chart, loaded = link_quiet(bench)]() mutable {
    if (!loaded()) return false;
    // Wherever the point is: the press goes down its column until one is taken hold of.
    const int position = kGammaPositions[kGammaPoints / 2];
    for (int value = 0; value < 1024 && chart->readout().isEmpty(); value += kGammaGrabRadius) {
      send_mouse(chart, QEvent::MouseMove, chart->to_widget(gamma_pixel(position, value)));
      if (!chart->readout().isEmpty()) {
        send_mouse(chart, QEvent::MouseButtonPress, chart->to_widget(gamma_pixel(position, value)));
      }
    }
    if (chart->readout().isEmpty()) give_up("no gamma point to drag");
    auto moves = std::make_shared<int>(0);
    every(4, [chart, position, moves] {
      const int swing = *moves % 400;
      send_mouse(chart, QEvent::MouseMove,
                 chart->to_widget(gamma_pixel(position, 300 + (swing < 200 ? swing : 400 - swing))));
      return ++*moves >= 750;
    });
    watch(bench, "drag_gamma_point_worst_gap", [moves] { return *moves >= 750; });
    return true;
  });
}

/// Chooses `path` in the file chooser once that is open, again until it has closed.
void choose_file(const QString& path) {
  auto chosen = std::make_shared<bool>(false);
  every(100, [path, chosen] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* chooser = qobject_cast<QFileDialog*>(widget);
      if (!chooser || !chooser->isVisible()) continue;
      chooser->findChild<QLineEdit*>()->setText(path);
      QMetaObject::invokeMethod(chooser, "accept");
      *chosen = true;
      return false;
    }
    return *chosen;
  });
}

/// From the first block on: opening the chooser is the toolkit's affair.
void download(Bench& bench) {
  button(bench.view, "FW")->click();
  choose_file(QFileInfo("firmware.bin").absoluteFilePath());
  every(20, [&bench, bar = bench.view.findChild<QProgressBar*>()] {
    if (bar->value() < 1) return false;
    watch(bench, "download_worst_gap", link_quiet(bench));
    return true;
  });
}

/// What the whole process takes of a core while nobody does anything, the simulated chip included.
void idle(Bench& bench) {
  when_quiet(bench, [] {
    constexpr std::chrono::seconds kLook{20};
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(kLook, qApp, [clock, used = std::clock()] {
      const double seconds = static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC;
      finish("idle_use_of_a_core", 1e11 * seconds / static_cast<double>(clock.nsecsElapsed()), "%");
    });
  });
}

const std::map<std::string, PageId> kSaves{
    {"save-isp-tune", PageId::isp_tune},
    {"save-gamma", PageId::gamma},
    {"save-lsc", PageId::lsc},
    {"save-awb", PageId::awb_tune},
    {"save-matrix", PageId::linear_matrix},
    {"save-dynamic", PageId::dynamic_control},
};

const std::map<std::string, void (*)(Bench&)> kMeasurements{
    {"load-all", load_all},
    {"console", console},
    {"description", description},
    {"calibration", calibration},
    {"drag", drag},
    {"download", download},
    {"known-values", known_values},
    {"compare-read", compare_read},
    {"journal", journal},
    {"idle", idle},
};

}  // namespace

QPushButton* button(const QWidget& window, const QString& caption) {
  for (auto* found : window.findChildren<QPushButton*>()) {
    if (found->text().remove(QLatin1Char('&')) == caption) return found;  // the mark of its letter
  }
  give_up("no button " + caption.toStdString());
}

void watch(Bench& bench, std::string name, std::function<bool()> over) {
  bench.meter.start();
  every(20, [&bench, name = std::move(name), over = std::move(over)]() -> bool {
    if (over()) finish(name, bench.meter.worst(), "ms");
    return false;
  });
}

std::function<bool()> link_quiet(Bench& bench) {
  return [&link = bench.view.link(), looks = 0]() mutable {
    looks = link.jobs_waiting() == 0 ? looks + 1 : 0;
    return looks > 50;
  };
}

void give_up(const std::string& why) {
  std::fprintf(stderr, "window_benchmark: %s\n", why.c_str());
  std::_Exit(1);
}

void when_quiet(Bench& bench, std::function<void()> then) {
  every(20, [quiet = link_quiet(bench), then = std::move(then)]() mutable {
    if (!quiet()) return false;
    then();
    return true;
  });
}

void print_figure(const std::string& name, double value, const char* unit) {
  std::printf("%s %.3f %s\n", name.c_str(), value, unit);
}

void finish(const std::string& name, double value, const char* unit) {
  print_figure(name, value, unit);
  std::fflush(stdout);
  std::_Exit(0);
}

bool begin_measurement(const std::string& what, Bench& bench) {
  QTimer::singleShot(kPatience, qApp, [what] { give_up(what + " did not come to an end"); });
  if (const auto found = kMeasurements.find(what); found != kMeasurements.end()) {
    found->second(bench);
    return true;
  }
  const bool verified = what.starts_with("verify-");
  const auto found = kSaves.find(verified ? "save-" + what.substr(7) : what);
  if (found == kSaves.end()) return false;
  std::string name = found->first.substr(5);
  std::replace(name.begin(), name.end(), '-', '_');
  if (verified) {
    QPushButton* save = button(shown_page(bench, found->second), "File/Flash Save");
    verified_save(bench, name, [save] { save->click(); });
  } else {
    save(bench, found->second, name);
  }
  return true;
}

}  // namespace qv5123
