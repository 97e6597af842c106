// The program, asked to end by a signal in the middle of its saves: the chip is left with its brackets
// closed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

#include "app/end_requests.h"
#include "link/serial_device.h"
#include "reliability/ui/real_program.h"
#include "support/program.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix.h"
#include "tuning/page_flows.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr const char* kFolder = "QV5123_SIGNAL_FOLDER";
/// How many moments are tried; more for a figure.
constexpr const char* kMoments = "QV5123_SIGNAL_MOMENTS";
constexpr int kUsualMoments = 4;
constexpr int kExpectedEnd = 0;

Task<> save_for_ever(PageHost& host) {
  for (;;) {
    for (const Traffic& traffic : {gamma_full_save({}), matrix_full_save({}), lens_full_save({})}) {
      LongTraffic save;
      save.traffic = traffic;
      co_await send_with_progress(host, std::move(save));
    }
  }
}

/// The process that gets the signal.
TEST(Signals, DISABLED_Victim) {
  EndRequests requests([] { std::_Exit(130); });
  const fs::path folder = qEnvironmentVariable(kFolder).toStdString();
  fs::current_path(folder);
  QSettings store(QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat);
  ProgramOptions options;
  options.setting_file = folder / "board.dat";
  Program::Parts parts;
  parts.device = make_serial_device();
  parts.pages = all_pages();
  parts.fixed_port = PortSettings{};
  parts.fixed_port->device = (folder / "chip").string();
  parts.journal_folder = folder / "journal";
  parts.end_process = [](int code) { std::_Exit(code); };
  parts.report = [](const std::string&) {};
  Program program(options, AppSettings(store), std::move(parts));
  program.start();
  test::wait_until([&] { return program.frame() != nullptr; });
  requests.pass_on_to([&] { program.end_unasked(); });
  auto& view = *program.frame()->findChild<CQV5123View*>();
  test::wait_until([&] { return !view.starting(); });
  view.document().user_data.set_entry(3, 77);
  FlowSet saving;
  saving.spawn(save_for_ever(view));
  test::wait_until([] { return false; });
}

/// Says something to the chip after all that the program said.
void send_behind(const std::string& frame, const fs::path& line) {
  const int fd = open(line.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_EQ(write(fd, frame.data(), frame.size()), static_cast<ssize_t>(frame.size()));
  close(fd);
}

/// What the chip's trace says of a bracket last.
bool is_closed(const std::string& trace, const std::string& bracket) {
  const std::size_t last = trace.rfind("@" + bracket);
  return last == std::string::npos || trace.compare(last + 3, 2, "00") == 0;
}

struct Ended {
  int code = -1;
  milliseconds took{0};
  std::string trace;
};

/// Runs the victim on a chip of its own and ends it `moment` after it began to save.
Ended end_at(const fs::path& folder, int signal, milliseconds moment) {
  test::Program chip("qv5123sim", {"--trace", "--link", (folder / "chip").string()});
  chip.line();
  test::Program victim(QCoreApplication::applicationFilePath().toStdString(),
                       {"--gtest_filter=Signals.DISABLED_Victim", "--gtest_also_run_disabled_tests"});
  Ended ended;
  ended.trace = chip.expect("@fa01*");
  std::this_thread::sleep_for(moment);
  const auto start = std::chrono::steady_clock::now();
  ended.code = victim.end(signal);
  ended.took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
  send_behind("@01ff*", folder / "chip");
  ended.trace += chip.expect("@01ff*");
  return ended;
}

TEST(Signals, AtAnyMomentOfASaveLeaveTheBracketsClosedAndTheValuesKept) {
  const test::CurrentFolder folder;
  fs::copy(test::source_folder() / "resources/regu.xml", folder / "regu.xml");
  fs::copy(test::source_folder() / "resources/sample.dat", folder / "board.dat");
  qputenv(kFolder, QByteArray::fromStdString((folder / "").string()));
  bool is_number = false;
  const int asked = qEnvironmentVariableIntValue(kMoments, &is_number);
  std::mt19937 random(7);
  std::vector<milliseconds> times;
  for (int i = 0; i < (is_number ? asked : kUsualMoments); ++i) {
    const int signal = std::array{SIGTERM, SIGINT, SIGHUP}[static_cast<std::size_t>(i) % 3];
    fs::remove_all(folder / "journal");
    const Ended ended = end_at(folder / "", signal, milliseconds(random() % 1500));
    SCOPED_TRACE("signal " + std::to_string(signal) + ", moment " + std::to_string(i));
    EXPECT_EQ(ended.code, kExpectedEnd);
    EXPECT_TRUE(is_closed(ended.trace, "fa") && is_closed(ended.trace, "f9"));
    EXPECT_TRUE(fs::exists(Journal::slot_file(folder / "journal", 1))) << "nobody was asked";
    EXPECT_LT(ended.took, std::chrono::seconds(3));
    times.push_back(ended.took);
  }
  std::sort(times.begin(), times.end());
  std::cout << times.size() << " ends: median " << times[times.size() / 2].count() << " ms, worst "
            << times.back().count() << " ms\n";
}

}  // namespace
}  // namespace qv5123
