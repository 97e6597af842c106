// Measures the whole window on the simulated chip. One figure a run, as "NAME VALUE UNIT" lines:
//
//   window_benchmark first-paint    ends as soon as the window was painted; the caller takes the time
//   window_benchmark load-all       worst gap between event-loop turns while "Load All From ISP" runs
//   window_benchmark console        the same while the console takes 10 MB of text
//   window_benchmark description    time to parse and show the description in the current directory
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "console/ui/console_view.h"
#include "console/ui/frame.h"
#include "console/ui/page_area.h"
#include "console/ui/program.h"
#include "console/ui/qv5123_view.h"
#include "registers/ui/dlg_isp_register.h"
#include "simulator/simulated_board.h"

namespace {

using namespace qv5123;

/// The longest time for which the event loop did not come round to a timer of 1 ms.
class GapMeter {
 public:
  GapMeter() {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
      const double now = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
      worst_ = std::max(worst_, now - last_);
      last_ = now;
    });
  }
  void start() {
    clock_.start();
    last_ = worst_ = 0;
    timer_.start(1);
  }
  double worst() const { return worst_; }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  double last_ = 0;
  double worst_ = 0;
};

[[noreturn]] void finish(const char* name, double value, const char* unit) {
  std::printf("%s %.2f %s\n", name, value, unit);
  std::fflush(stdout);
  std::_Exit(0);
}

Program::Parts parts() {
  Program::Parts parts;
  parts.device = std::make_unique<SimulatedBoard>();
  parts.pages[PageId::registers] = page_factory<CDlgIspRegister>();
  PortSettings port;
  port.device = "simulated chip";
  parts.fixed_port = port;
  parts.list_ports = [] { return std::vector<PortInfo>{}; };
  parts.probe_port = [](const std::string&) { return OpenResult{}; };
  parts.end_process = [](int code) { std::_Exit(code); };
  parts.report = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); };
  return parts;
}

/// Ends the process at the first paint event that reached the frame.
class FirstPaint : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) QTimer::singleShot(0, [] { std::_Exit(0); });
    return QObject::eventFilter(watched, event);
  }
};

QPushButton* button(QWidget* window, const QString& caption) {
  for (auto* found : window->findChildren<QPushButton*>()) {
    if (found->text() == caption) return found;
  }
  std::fprintf(stderr, "no button %s\n", qPrintable(caption));
  std::exit(1);
}

/// Calls `look` every 20 ms until it says that all is over, then prints the worst gap.
void watch(GapMeter& meter, const char* name, std::function<bool()> over) {
  auto* look = new QTimer(qApp);
  QObject::connect(look, &QTimer::timeout, look, [&meter, name, over] {
    if (over()) finish(name, meter.worst(), "ms");
  });
  meter.start();
  look->start(20);
}

void measure_load_all(CQV5123View& view, GapMeter& meter) {
  auto* load = button(&view, "Load All From ISP");
  load->click();
  watch(meter, "load_all_worst_gap", [load] { return load->isEnabled(); });
}

/// As much text as the receive queue hands over at once, every turn, until 10 MB have come.
void measure_console(CQV5123View& view, GapMeter& meter) {
  std::string text;
  while (text.size() < 8000) text += "AE: gain 12 target 40 speed 3, a line of text from the chip\r\n";
  auto* flood = new QTimer(qApp);
  auto* sent = new std::size_t(0);
  QObject::connect(flood, &QTimer::timeout, flood, [&view, text, flood, sent] {
    view.take_received(text);
    *sent += text.size();
    if (*sent >= 10'000'000) flood->stop();
  });
  flood->start(0);
  watch(meter, "console_worst_gap",
        [&view, flood] { return !flood->isActive() && view.console().settled(); });
}

void measure_description(CQV5123View& view) {
  QElapsedTimer clock;
  clock.start();
  CDlgIspRegister page(view);
  page.resize(900, 650);
  page.grab();
  finish("parse_and_show_description", static_cast<double>(clock.nsecsElapsed()) / 1e6, "ms");
}

}  // namespace

int main(int argc, char** argv) {
  QStandardPaths::setTestModeEnabled(true);
  QApplication application(argc, argv);
  const std::string what = argc > 1 ? argv[1] : "";
  QSettings store("QV5123 benchmark", "QV5123 benchmark");
  ProgramOptions options;
  options.simulate = true;
  options.tour.reset();
  options.setting_file = "sample.dat";
  Program program(options, AppSettings(store), parts());
  program.start();
  FirstPaint first_paint;
  GapMeter meter;
  if (what == "first-paint") {
    program.frame()->installEventFilter(&first_paint);
    return QApplication::exec();
  }
  auto* view = program.frame()->findChild<CQV5123View*>();
  QTimer::singleShot(2000, [&] {
    if (what == "load-all") return measure_load_all(*view, meter);
    if (what == "console") return measure_console(*view, meter);
    if (what == "description") return measure_description(*view);
    std::fprintf(stderr, "window_benchmark: unknown measurement %s\n", what.c_str());
    std::_Exit(2);
  });
  return QApplication::exec();
}
