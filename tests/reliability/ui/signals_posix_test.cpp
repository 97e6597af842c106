// The program, asked to end by a signal in the middle of what takes long: the chip is left with its brackets
// closed, its picker off, and as one that takes commands.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFileDialog>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <thread>

#include "app/end_requests.h"
#include "base/hex.h"
#include "base/text.h"
#include "link/serial_device.h"
#include "registers/reg_description.h"
#include "reliability/ui/real_program.h"
#include "support/program.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"
#include "tuning/picker.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr const char* kFolder = "QV5123_SIGNAL_FOLDER";
constexpr const char* kOperation = "QV5123_SIGNAL_OPERATION";
constexpr const char* kTwice = "QV5123_SIGNAL_TWICE";
/// How many moments of each operation are tried, for a figure; otherwise one of a few of them.
constexpr const char* kMoments = "QV5123_SIGNAL_MOMENTS";
/// Without a figure a loaded machine has all the time for the end.
bool times_count() {
  return qEnvironmentVariableIsSet(kMoments);
}
constexpr int kExpectedEnd = 0;
constexpr int kEndedAtOnce = 130;

/// What takes long.
struct Operation {
  const char* name;
  PageId page;
  const char* button;
  const char* begun;  ///< what the chip's trace then says
  milliseconds takes;
  const char* file = "";      ///< chosen once the button is pressed
  bool needs_picker = false;  ///< switched on before
  bool is_in_column = false;  ///< and not on the page
  bool is_usual = false;      ///< also tried where no figure is wanted
};

constexpr Operation kOperations[] = {
    {"save ISP tune", PageId::isp_tune, "File/Flash Save", "@fa01*", milliseconds(1500)},
    {"save gamma", PageId::gamma, "File/Flash Save", "@fa01*", milliseconds(3000)},
    {"save LSC", PageId::lsc, "File/Flash Save", "@fa01*", milliseconds(1200)},
    {"save AWB", PageId::awb_tune, "File/Flash Save", "@fa01*", milliseconds(2000)},
    {"save linear matrix", PageId::linear_matrix, "File/Flash Save", "@fa01*", milliseconds(4000), "", true,
     false, true},
    {"save dynamic control", PageId::dynamic_control, "File/Flash Save", "@fa01*", milliseconds(3000)},
    {"Load All", PageId::registers, "Load All From ISP", "@94", milliseconds(3000)},
    {"register file", PageId::registers, "Load REG from File to ISP...", "@92", milliseconds(1500),
     "some.txt"},
    {"firmware download", PageId::registers, "FW", "blocks announced", milliseconds(3000), "image.bin", false,
     true, true},
    {"font download", PageId::registers, "FONT", "blocks announced", milliseconds(3000), "image.bin", false,
     true},
    {"picker on, LSC", PageId::lsc, "Enable Color Picker", "@94", milliseconds(2000)},
    {"calibration", PageId::lsc, "CALIBRATION", "@9238*", milliseconds(8000), "", true, false, true},
};

const Operation& operation_named(const std::string& name) {
  return *std::ranges::find(kOperations, name, &Operation::name);
}

/// Chooses the file in the dialog that comes up.
void choose(const fs::path& path) {
  test::wait_until([] { return test::visible<QFileDialog>() != nullptr; });
  auto* dialog = test::visible<QFileDialog>();
  dialog->selectFile(QString::fromStdString(path.string()));
  QMetaObject::invokeMethod(dialog, "accept");
}

void switch_picker_on(QWidget& page) {
  auto* picker = test::find<QAbstractButton>(page, "Enable Color Picker");
  picker->click();
  auto* key = test::find<QAbstractButton>(page, "LEFT");
  test::wait_until([&] { return key->isEnabled(); });
}

void begin(CQV5123View& view, const Operation& operation, const fs::path& folder) {
  view.pages().choose(operation.page);
  QWidget& page = *view.pages().page_widget(operation.page);
  if (operation.needs_picker) switch_picker_on(page);
  // From here on the trace tells of the operation.
  view.link().send(Batch{{0x01, 0xFE}});
  auto& form = operation.is_in_column ? static_cast<QWidget&>(view) : page;
  test::find<QAbstractButton>(form, operation.button)->click();
  if (*operation.file) choose(folder / operation.file);
}

/// The process that gets the signal.
TEST(Signals, DISABLED_Victim) {
  EndRequests requests(kEndedAtOnce, times_count() ? EndRequests::kEndedWithin : test::kInVain);
  const fs::path folder = qEnvironmentVariable(kFolder).toStdString();
  fs::current_path(folder);
  QSettings store(QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat);
  ProgramOptions options;
  options.setting_file = folder / "board.dat";
  Program::Parts parts = test::real_parts(folder, make_serial_device());
  parts.fixed_port->device = (folder / "chip").string();
  parts.end_process = [](int code) { std::_Exit(code); };
  if (times_count()) parts.end_patience = Program::Parts().end_patience;
  Program program(options, AppSettings(store), std::move(parts));
  program.start();
  test::wait_until([&] { return program.frame() != nullptr; });
  requests.pass_on_to([&] { program.end_unasked(); });
  auto& view = *program.frame()->findChild<CQV5123View*>();
  test::wait_until([&] { return !view.starting(); });
  view.document().user_data.set_entry(3, 77);
  begin(view, operation_named(qEnvironmentVariable(kOperation).toStdString()), folder);
  test::wait_for_the_end();
}

/// Says something to the chip after all that the program said.
void send_behind(const std::string& frame, const fs::path& line) {
  const int fd = open(line.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_EQ(write(fd, frame.data(), frame.size()), static_cast<ssize_t>(frame.size()));
  close(fd);
}

/// The chip as its trace leaves it.
struct LeftChip {
  int save_bracket = 0;
  int keep_bracket = 0;
  int ae = 1;
  int awb = 1;
  int display = 0x90;
  int enable = 0;
  int correction = 0x10;
  bool answers = false;

  explicit LeftChip(const std::string& trace) : answers(trace.ends_with("@01ff*")) {
    int address = 0;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
      if (line.size() < 6 || line[0] != '@') continue;
      const int reg = std::stoi(line.substr(1, 2), nullptr, 16);
      const int value = std::stoi(line.substr(3, 2), nullptr, 16);
      if (reg == reg::kSaveBracket) save_bracket = value;
      if (reg == reg::kKeepBracket) keep_bracket = value;
      if (reg == reg::kAeTask) ae = value;
      if (reg == reg::kAwbTask) awb = value;
      if (reg == 0x92) address = (address << 8 | value) & 0xFFF;
      if (reg != 0x93) continue;
      if (address == picker_register::kDisplay) display = value;
      if (address == picker_register::kEnable) enable = value;
      if (address == picker_register::kCorrection) correction = value;
    }
  }
  bool brackets_closed() const { return save_bracket == 0 && keep_bracket == 0; }
  bool picker_off() const {
    return display == 0x90 && (enable & 0x80) == 0 && (correction & 0x10) != 0 && ae == 1 && awb == 1;
  }
};

struct Ended {
  int code = -1;
  milliseconds took{0};
  std::string trace;
};

/// Runs the victim on a chip of its own and ends it `moment` after the operation began.
Ended end_at(const fs::path& folder, const Operation& operation, int signal, milliseconds moment) {
  test::Program chip("qv5123sim", {"--trace", "--scene", "flat", "--link", (folder / "chip").string()});
  chip.line();
  qputenv(kOperation, operation.name);
  test::Program victim(QCoreApplication::applicationFilePath().toStdString(),
                       {"--gtest_filter=Signals.DISABLED_Victim", "--gtest_also_run_disabled_tests"});
  Ended ended;
  ended.trace = chip.expect("@01fe*");
  ended.trace += chip.expect(operation.begun);
  std::this_thread::sleep_for(moment);
  const auto start = std::chrono::steady_clock::now();
  ended.code = victim.end(signal);
  ended.took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
  send_behind("@01ff*", folder / "chip");
  ended.trace += chip.expect("@01ff*");
  return ended;
}

/// What came of the signals at one operation.
struct Figures {
  int brackets_closed = 0;
  int picker_off = 0;
  int answers = 0;
  int kept = 0;
  std::vector<milliseconds> times{};

  std::string row(const std::string& name) {
    std::sort(times.begin(), times.end());
    const auto of = "/" + std::to_string(times.size()) + " | ";
    return "| " + name + " | " + std::to_string(brackets_closed) + of + std::to_string(picker_off) + of +
           std::to_string(answers) + of + std::to_string(kept) + of +
           std::to_string(times[times.size() / 2].count()) + " ms | " + std::to_string(times.back().count()) +
           " ms |\n";
  }
};

Figures try_moments(const fs::path& folder, const Operation& operation, int moments) {
  std::mt19937 random(7);
  Figures figures;
  for (int i = 0; i < moments; ++i) {
    const int signal = std::array{SIGTERM, SIGINT, SIGHUP}[static_cast<std::size_t>(i) % 3];
    const milliseconds moment(random() % operation.takes.count());
    fs::remove_all(folder / "journal");
    fs::copy(test::source_folder() / "resources/sample.dat", folder / "board.dat",
             fs::copy_options::overwrite_existing);
    const Ended ended = end_at(folder, operation, signal, moment);
    SCOPED_TRACE(std::string(operation.name) + ", " + std::to_string(moment.count()) + " ms");
    const LeftChip chip(ended.trace);
    const bool is_save = std::string(operation.begun) == "@fa01*";
    // A save has written the file.
    const bool kept = is_save || fs::exists(Journal::slot_file(folder / "journal", 1));
    EXPECT_EQ(ended.code, kExpectedEnd);
    EXPECT_TRUE(chip.brackets_closed() && chip.picker_off() && chip.answers && kept);
    EXPECT_TRUE(!times_count() || ended.took < EndRequests::kEndedWithin) << ended.took.count() << " ms";
    figures.brackets_closed += chip.brackets_closed();
    figures.picker_off += chip.picker_off();
    figures.answers += chip.answers;
    figures.kept += kept;
    figures.times.push_back(ended.took);
  }
  return figures;
}

/// Gives every register of the description a value.
void write_register_file(const test::TemporaryFolder& folder) {
  std::string lines;
  for (const RegEntry& entry : RegDescription::load(folder / "regu.xml").registers) {
    lines += "0x" + upper_hex(static_cast<unsigned>(entry.address), 4) + "=0x12 //" + utf8(entry.name) + "\n";
  }
  folder.write("some.txt", lines);
}

TEST(Signals, AtAnyMomentOfWhatTakesLongLeaveTheChipAsItShouldBeAndTheValuesKept) {
  const test::CurrentFolder folder;
  fs::copy(test::source_folder() / "resources/regu.xml", folder / "regu.xml");
  write_register_file(folder);
  folder.write("image.bin", std::string(50'000, 'f'));
  qputenv(kFolder, QByteArray::fromStdString((folder / "").string()));
  bool is_number = false;
  const int asked = qEnvironmentVariableIntValue(kMoments, &is_number);
  const std::string only = qEnvironmentVariable(kOperation).toStdString();
  for (const Operation& operation : kOperations) {
    if (!only.empty() && only != operation.name) continue;
    if (!is_number && !operation.is_usual) continue;
    std::cout << try_moments(folder / "", operation, is_number ? asked : 1).row(operation.name);
  }
}

/// A process whose window stands still; where two signals are to come, the first alone ends it too late.
TEST(Signals, DISABLED_StandsStill) {
  EndRequests requests(kEndedAtOnce,
                       qEnvironmentVariableIsSet(kTwice) ? 2 * test::kInVain : EndRequests::kEndedWithin);
  requests.pass_on_to([] {});
  std::cout << "stands" << std::endl;
  std::this_thread::sleep_for(std::chrono::minutes(1));
}

TEST(Signals, AWindowThatStandsStillEndsInTimeAndASecondSignalEndsAtOnce) {
  for (const bool twice : {false, true}) {
    twice ? qputenv(kTwice, "1") : qunsetenv(kTwice);
    test::Program victim(QCoreApplication::applicationFilePath().toStdString(),
                         {"--gtest_filter=Signals.DISABLED_StandsStill", "--gtest_also_run_disabled_tests"});
    victim.expect("stands\n");
    if (twice) victim.signal(SIGINT);
    EXPECT_EQ(victim.end(SIGTERM), kEndedAtOnce) << "before its minute is over";
  }
}

}  // namespace
}  // namespace qv5123
