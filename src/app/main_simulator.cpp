#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <semaphore>
#include <string>
#include <vector>

#include "base/interrupts.h"
#include "link/serial_device.h"
#include "simulator/board_server.h"
#include "simulator/camera.h"
#include "simulator/pty.h"

namespace {

using namespace qv5123;

constexpr char kProgram[] = "qv5123sim";
constexpr int kBadUsage = 2;
constexpr int kPortFailed = 3;

struct Options {
  std::string link;
  std::string port;
  std::string scene = kSceneNames[0];
  int lamp = kUsualLamp;
  std::string noise = "low";
  bool trace = false;
  LineOptions line;
  int latency = 0;  // ms
  std::vector<std::string> faults;
};

/// What is wrong with the name of a scene; empty when nothing is.
std::string scene_check(const std::string& name) {
  if (scene_named(name)) return {};
  return name + " is no scene: chart or flat, then any of " + scene_words() + ", with - between them";
}

void declare(CLI::App& app, Options& options) {
  app.set_version_flag("--version", std::string(kProgram) + " " + QV5123_VERSION,
                       "Print the version and exit");
  app.set_help_flag("--help", "Print this help and exit");
  auto* link = app.add_option("--link", options.link, "Put a symbolic link to the pseudo-terminal here");
  link->type_name("PATH");
  app.add_option("--port", options.port, "Answer on this serial port instead of a pseudo-terminal")
      ->type_name("DEVICE")
      ->excludes(link);
  app.add_option("--line-rate", options.line.line_rate,
                 "Let bytes through no faster than a line of this baud rate")
      ->type_name("BAUD")
      ->check(CLI::Range(1u, 100'000'000u));
  app.add_option("--latency", options.latency, "Let the chip take this long for everything that it says")
      ->type_name("MS")
      ->check(CLI::Range(0, 60'000));
  app.add_option(
         "--scene", options.scene,
         "What the camera looks at: chart (the default) or flat, then any of these words, with - between\n"
         "them: " +
             scene_words())
      ->type_name("KIND")
      ->check(scene_check);
  app.add_option("--lamp", options.lamp, "Colour temperature of the lamp (default 4100)")
      ->type_name("KELVIN")
      ->check(CLI::Range(2000, 10'000));
  app.add_option("--noise", options.noise, "Noise of the sensor: off, low (the default) or high")
      ->type_name("HOW MUCH")
      ->check(CLI::IsMember(std::vector<std::string>(kNoiseNames.begin(), kNoiseNames.end())));
  app.add_flag("--trace", options.trace, "Print every frame that the chip understands");
  app.add_option("--seed", options.line.seed, "Seed of everything random (default 1)");
  app.add_option(
         "--fault", options.faults,
         "Spoil the line: KIND is drop, corrupt, duplicate, delay or hangup, RATE (0 to 1) how likely\n"
         "each byte is to suffer; may be given several times")
      ->type_name("KIND=RATE")
      ->expected(1)
      ->take_all();
}

int complain(std::string text, int code) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::cerr << kProgram << ": " << text << std::endl;
  return code;
}

/// What is wrong with the faults asked for; empty when nothing is.
std::string take_faults(Options& options) {
  for (const std::string& text : options.faults) {
    const std::string fault = parse_fault(text, options.line.faults);
    if (!fault.empty()) return "--fault " + fault;
  }
  return {};
}

/// Until the system asks the program to end.
class Stop {
 public:
  void wait() {
    asked_.acquire();
    interrupts_.heard();
    interrupts_.ending();
  }

 private:
  std::counting_semaphore<> asked_{0};
  Interrupts interrupts_{[this] { asked_.release(); }, {"", 0}};
};

int serve(SerialDevice& device, BoardServer& server, const Options& options, Stop& stop) {
  LineSettings settings;
  if (options.line.line_rate != 0) settings.baud_rate = options.line.line_rate;
  const OpenResult opened = server.start(options.port, settings);
  if (!opened.ok()) return complain(opened.text, options.port.empty() ? kBadUsage : kPortFailed);
  stop.wait();
  server.stop();
  device.close();
  return 0;
}

int serve_on_port(SimulatedChip& chip, const Options& options, Stop& stop) {
  const std::unique_ptr<SerialDevice> device = make_serial_device();
  BoardServer server(*device, chip, options.line);
  server.on_open([&] { std::cout << options.port << std::endl; });
  return serve(*device, server, options, stop);
}

int serve_on_pseudo_terminal(SimulatedChip& chip, const Options& options, Stop& stop) {
  BoardServer* listener = nullptr;
  const auto device = make_pseudo_terminal({options.link, [&] { listener->host_opened(); }});
  if (!device) return complain("this system has no pseudo-terminals; --port says where to answer", kBadUsage);
  BoardServer server(*device, chip, options.line);
  listener = &server;
  server.on_open([&] { std::cout << device->path() << std::endl; });
  return serve(*device, server, options, stop);
}

int run(const Options& options) {
  Stop stop;
  SimulatedChip chip;
  CameraTruth truth;
  truth.seed = options.line.seed;
  truth.lamp = options.lamp;
  set_noise(truth, options.noise);
  chip.set_camera(Camera(scene_named(options.scene).value_or(Scene{}), truth));
  if (options.trace) {
    chip.set_trace([](const std::string& line) { std::cout << line << std::endl; });
  }
  return options.port.empty() ? serve_on_pseudo_terminal(chip, options, stop)
                              : serve_on_port(chip, options, stop);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("The simulated QV512x camera chip, on a pseudo-terminal or a serial port.", kProgram);
  Options options;
  declare(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return error.get_exit_code() == 0 ? app.exit(error) : complain(error.what(), kBadUsage);
  }
  options.line.latency = std::chrono::milliseconds(options.latency);
  const std::string fault = take_faults(options);
  if (!fault.empty()) return complain(fault, kBadUsage);
  return run(options);
}
