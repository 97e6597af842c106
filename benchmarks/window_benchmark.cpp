// Measures the whole window on the simulated chip, on a 115200 baud line:
//
//   window_benchmark first-paint    ends as soon as the window was painted; the caller takes the time
//   window_benchmark load-all       worst gap between event-loop turns while "Load All From ISP" runs
//   window_benchmark console        the same while the console takes 10 MB of text
//   window_benchmark save-PAGE      the same during a page's full save (isp-tune, gamma, lsc, awb, matrix,
//                                   dynamic), and the time of its writes over their pacing
//   window_benchmark calibration    the same during a lens shading calibration of 60 positions
//   window_benchmark drag           the same while a gamma point is dragged
//   window_benchmark download       the same while firmware.bin is downloaded
//   window_benchmark idle           share of a core that an open port takes while nothing is done
//   window_benchmark compare-read   as load-all while "Compare" reads all pages from the chip
//   window_benchmark journal        the same while a journal of 100,000 writes is opened
//   window_benchmark verify-PAGE    the same while a page is read back after its full save, and its time
//   window_benchmark known-values   Compare filled and filtered, undo of a step, and the marks of all pages
//   window_benchmark description    time to parse and show the description in the current directory
#include <QApplication>
#include <QMainWindow>
#include <QSettings>
#include <QStandardPaths>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/ui/frame.h"
#include "app/ui/main_pages.h"
#include "app/ui/page_area.h"
#include "app/ui/process.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "simulator/simulated_board.h"
#include "window_measurements.h"

namespace {

using namespace qv5123;

std::unique_ptr<SimulatedBoard> make_board(bool timed) {
  LineOptions line;
  line.line_rate = timed ? 115200 : 0;
  auto board = std::make_unique<SimulatedBoard>(line);
  board->with_chip([](SimulatedChip& chip) {
    chip.set_camera(Camera(scene_named("flat").value_or(Scene{}), CameraTruth{}));
  });
  return board;
}

Program::Parts parts(std::unique_ptr<SerialDevice> device) {
  Program::Parts parts;
  parts.device = std::move(device);
  parts.pages = all_pages();
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

}  // namespace

int main(int argc, char** argv) {
  const std::jthread font_search = begin_font_search();
  QStandardPaths::setTestModeEnabled(true);
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  const std::string what = argc > 1 ? argv[1] : "";
  QSettings store("QV5123 benchmark", "QV5123 benchmark");
  ProgramOptions options;
  options.simulate = true;
  options.tour.reset();
  options.setting_file = "sample.dat";
  auto device = std::make_unique<TimedDevice>(make_board(what != "first-paint"));
  TimedDevice& timed = *device;
  Program program(options, AppSettings(store), parts(std::move(device)));
  program.start();
  FirstPaint first_paint;
  if (what == "first-paint") {
    program.frame()->installEventFilter(&first_paint);
    return QApplication::exec();
  }
  Bench bench{*program.frame()->findChild<CQV5123View*>(), timed, {}};
  // By then the start is over and the chip has been asked its version.
  QTimer::singleShot(2000, [&] {
    if (begin_measurement(what, bench)) return;
    std::fprintf(stderr, "window_benchmark: unknown measurement %s\n", what.c_str());
    std::_Exit(2);
  });
  return QApplication::exec();
}
