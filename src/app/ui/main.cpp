#include <QPointer>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "app/end_requests.h"
#include "app/ui/camera_place.h"
#include "app/ui/colours.h"
#include "app/ui/frame.h"
#include "app/ui/main_pages.h"
#include "app/ui/process.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_app.h"
#include "app/ui/qv5123_view.h"
#include "app/ui/session_end.h"
#include "base/atomic_file.h"
#include "base/ui/qt_text.h"
#include "link/deferred_device.h"
#include "link/named_device.h"
#include "link/port_list.h"
#include "link/serial_device.h"
#include "link/trace_device.h"
#include "simulator/simulated_board.h"
#include "simulator/ui/camera_dock.h"
#include "tuning/measuring_board.h"

namespace {

using namespace qv5123;

/// What shells make of a program that Ctrl-C ended.
constexpr int kEndedByRequest = 130;
/// Beside the settings; where those are in the registry, the folder of this program's local data.
constexpr QStandardPaths::StandardLocation kJournalPlace = QStandardPaths::AppConfigLocation;
constexpr const char* kSimulatedDevice = "simulated chip";

/// Reads the command line before there is a window system to connect to: help needs none.
std::variant<ProgramOptions, EndAtOnce> early_options(int& argc, char** argv) {
  QCoreApplication application(argc, argv);
  return read_options(program_arguments(argc, argv));
}

/// What is wrong with the scene asked for; nothing when it is one, or none was.
std::optional<EndAtOnce> scene_fault(const ProgramOptions& options) {
  if (!options.scene || scene_named(*options.scene)) return std::nullopt;
  const QString scene = QString::fromStdString(*options.scene).simplified();
  return EndAtOnce{QStringLiteral("QV5123: There is no scene '%1': chart or flat, then any of %2.")
                       .arg(scene, QString::fromStdString(scene_words())),
                   2};
}

EndAtOnce unwritable(const std::filesystem::path& trace) {
  return {QStringLiteral("QV5123: Cannot write %1").arg(path_to_qt(trace)), 2};
}

int print(const EndAtOnce& end) {
  const QByteArray text = end.text.toLocal8Bit();
  std::fputs(text.constData(), end.exit_code == 0 ? stdout : stderr);
  if (!text.endsWith('\n')) std::fputc('\n', end.exit_code == 0 ? stdout : stderr);
  return end.exit_code;
}

PortInfo simulated_port() {
  return {-1, kSimulatedDevice, "Simulated chip"};
}

std::optional<PortSettings> fixed_port(const ProgramOptions& options) {
  if (!options.port && !options.simulate) return std::nullopt;
  PortSettings port;
  if (options.simulate) {
    port.device = kSimulatedDevice;
    port.description = simulated_port().name;
    return port;
  }
  port.device = *options.port;
  port.number = port_number_from_name(*options.port).value_or(port.number);
  port.description = *options.port;
  port.line = options.line;
  return port;
}

CQV5123View& view_of(CMainFrame& frame) {
  return *static_cast<CQV5123View*>(frame.centralWidget());
}

/// What was read or sent on the ISP tune page.
std::optional<int> known_video_mode(const ValueStates& values) {
  const std::size_t page = values.page_named("front");
  const auto& fields = values.fields(page);
  const auto field = std::ranges::find(fields, "video_mode", &FieldInfo::name);
  if (field == fields.end()) return std::nullopt;
  const ChipValue chip = values.state(page, static_cast<std::size_t>(field - fields.begin())).chip;
  return chip.how == Known::nothing ? std::nullopt : std::optional(chip.number);
}

CameraDock& add_camera(CMainFrame& frame, Scheduler& scheduler, SimulatedBoard& board, bool visible) {
  auto* dock = new CameraDock([&board](const auto& use) { board.with_chip(use); }, scheduler, &frame);
  place_camera(frame, *dock, visible);
  return *dock;
}

/// A click into the camera's picture is one into what the pages measure.
void let_clicks_measure(CameraDock& dock, CMainFrame& frame, std::shared_ptr<MeasuringBoard> measuring) {
  QObject::connect(&dock, &CameraDock::place_clicked, &frame, [&frame, measuring](int x, int y) {
    if (measuring->move_to({x, y})) return;
    view_of(frame).show_status(
        "The cursor is that of LinearMatrix, LSC and AWBTune: open one of them first.");
  });
}

std::unique_ptr<SimulatedBoard> simulated_board(const ProgramOptions& options) {
  auto board = std::make_unique<SimulatedBoard>();
  const Scene scene = scene_named(options.scene.value_or(kSceneNames[0])).value_or(Scene{});
  board->with_chip([&](SimulatedChip& chip) { chip.set_camera(Camera(scene)); });
  return board;
}

/// The real ports, and the simulated chip as the last of them.
std::vector<PortInfo> ports_to_choose() {
  std::vector<PortInfo> ports = list_ports();
  ports.push_back(simulated_port());
  return ports;
}

OpenResult probe_any(const std::string& device) {
  return device == kSimulatedDevice ? OpenResult{} : probe_port(device);
}

/// Which of the two devices is used is told by the name that is opened.
std::unique_ptr<SerialDevice> device_beside(std::unique_ptr<SerialDevice> simulated) {
  return std::make_unique<NamedDevice>(kSimulatedDevice, std::move(simulated), make_serial_device());
}

void report(const std::string& text) {
  std::fprintf(stderr, "QV5123: %s\n", text.c_str());
}

/// Null where nothing is to be recorded.
std::shared_ptr<Trace> make_trace(const ProgramOptions& options) {
  if (!options.trace) return nullptr;
  const std::string fault = "Cannot write " + path_text(*options.trace);
  return std::make_shared<Trace>(*options.trace, [fault] { report(fault); });
}

/// The chip that is chosen in the port dialog is made when it is opened first, on the port's thread; its
/// camera comes into the window then.
void use_chosen_chip(Program::Parts& parts, const std::shared_ptr<MeasuringBoard>& measuring) {
  const auto made = std::make_shared<std::function<void(SimulatedBoard&)>>();
  parts.furnish = [furnish = std::move(parts.furnish), made, measuring](CMainFrame& window,
                                                                        Scheduler& scheduler) {
    furnish(window, scheduler);
    *made = [frame = QPointer<CMainFrame>(&window), &scheduler, measuring](SimulatedBoard& board) {
      scheduler.post([frame, &scheduler, measuring, &board] {
        if (frame) let_clicks_measure(add_camera(*frame, scheduler, board, true), *frame, measuring);
      });
    };
  };
  parts.device = device_beside(std::make_unique<DeferredDevice>([made] {
    auto board = simulated_board({});
    if (*made) (*made)(*board);
    return board;
  }));
}

Program::Parts program_parts(const ProgramOptions& options) {
  Program::Parts parts;
  parts.list_ports = ports_to_choose;
  parts.probe_port = probe_any;
  const auto measuring = std::make_shared<MeasuringBoard>();
  parts.pages = all_pages(measuring);
  parts.fixed_port = fixed_port(options);
  if (!options.tour) parts.journal_folder = to_path(QStandardPaths::writableLocation(kJournalPlace));
  // At once: nothing is torn down, and what was to be saved is on the disk.
  parts.end_process = [](int code) { std::_Exit(code); };
  parts.report = report;
  parts.furnish = [measuring](CMainFrame& frame, Scheduler&) {
    measuring->known_video_mode = [&values = view_of(frame).values()] { return known_video_mode(values); };
  };
  if (!options.simulate) {
    use_chosen_chip(parts, measuring);
    return parts;
  }
  auto board = simulated_board(options);
  parts.aim_camera = [board = board.get()](const char* scene) {
    board->with_chip([scene](SimulatedChip& chip) { chip.set_camera(Camera(*scene_named(scene))); });
  };
  // The board lives as long as the port session, which outlives the window.
  parts.furnish = [measuring, furnish = std::move(parts.furnish), board = board.get(),
                   tour = options.tour.has_value()](CMainFrame& frame, Scheduler& scheduler) {
    furnish(frame, scheduler);
    let_clicks_measure(add_camera(frame, scheduler, *board, !tour), frame, measuring);
  };
  parts.device = device_beside(std::move(board));
  return parts;
}

}  // namespace

int main(int argc, char** argv) {
  // First, since every thread takes over what it does with signals.
  EndRequests end_requests(kEndedByRequest);
  use_parent_console();
  const auto options = early_options(argc, argv);
  if (const auto* end = std::get_if<EndAtOnce>(&options)) return print(*end);
  if (const auto fault = scene_fault(std::get<ProgramOptions>(options))) return print(*fault);
  const std::jthread font_search = begin_font_search();
  CQV5123App application(argc, argv);
  if (std::get<ProgramOptions>(options).dark) QApplication::setPalette(dark_palette());
  QSettings store;
  const AppSettings settings(store);
  const auto& chosen = std::get<ProgramOptions>(options);
  const std::shared_ptr<Trace> trace = make_trace(chosen);
  if (trace && !trace->ok()) return print(unwritable(*chosen.trace));
  Program::Parts parts = program_parts(chosen);
  if (trace) parts.device = traced(std::move(parts.device), trace);
  Program program(chosen, settings, std::move(parts));
  program.start();
  end_requests.pass_on_to([&program] { program.end_unasked(); });
  end_with_session(application, [&program] { program.end_unasked(); });
  return application.exec();
}
