#include "console/ui/program.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

#include "console/ui/frame.h"
#include "console/ui/qv5123_view.h"
#include "link/in_process_device.h"
#include "link/ui/serial_port_setting.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

QStringList command_line(std::initializer_list<QString> arguments) {
  return QStringList{"QV5123"} + QStringList(arguments);
}

TEST(ProgramOptions, AreReadOrRefusedInOneLine) {
  const test::TemporaryFolder folder;
  const QString file = QString::fromStdString(folder.write("a.dat", "1").string());
  const auto read =
      std::get<ProgramOptions>(read_options(command_line({"--port", "/dev/ttyS0", "--settings", file})));
  EXPECT_EQ(read.port, "/dev/ttyS0");
  EXPECT_EQ(read.setting_file, folder.path() / "a.dat");
  EXPECT_FALSE(read.simulate);
  const auto mixed = std::get<ProgramOptions>(read_options(command_line(
      {"-platform", "offscreen", "--style=fusion", "-reverse", "--port", "COM5", "-style", "x"})));
  EXPECT_EQ(mixed.port, "COM5") << "the toolkit's options are its own";
  const QString pictures = QString::fromStdString((folder.path() / "x" / "y").string());
  EXPECT_TRUE(std::get<ProgramOptions>(read_options(command_line({"--tour", pictures}))).simulate);
  EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "x" / "y"));

  const auto refused = [](std::initializer_list<QString> arguments) {
    const auto end = std::get<EndAtOnce>(read_options(command_line(arguments)));
    EXPECT_EQ(end.exit_code, 2);
    EXPECT_FALSE(end.text.contains('\n'));
    return end.text.toStdString();
  };
  EXPECT_EQ(refused({"--settings", "/no/such.dat"}), "QV5123: Setting file '/no/such.dat' does not exist.");
  EXPECT_EQ(refused({"--bogus"}), "QV5123: Unknown option 'bogus'.");
  EXPECT_EQ(refused({"stray"}), "QV5123: Unexpected argument 'stray'.");
  EXPECT_EQ(refused({"--port"}), "QV5123: Missing value after '--port'.");
  EXPECT_EQ(refused({"--tour", file}), "QV5123: Folder '" + file.toStdString() + "' cannot be made.");
  EXPECT_EQ(refused({"--simulate", "--port", "COM1"}),
            "QV5123: Options --simulate and --port exclude each other.");
  EXPECT_EQ(refused({"--scene", "flat"}), "QV5123: Option --scene needs --simulate.");
  EXPECT_EQ(refused({"--scene", "flat", "--port", "COM1", "--tour", pictures}),
            "QV5123: Options --scene and --port exclude each other.");
  EXPECT_EQ(std::get<ProgramOptions>(read_options(command_line({"--simulate", "--scene", "flat"}))).scene,
            "flat");
  EXPECT_EQ(std::get<EndAtOnce>(read_options(command_line({"--version"}))).text,
            "QV5123 " QV5123_VERSION "\n");
}

TEST(AppSettings, KeepThePortUnderTheNamesOfItsSection) {
  const test::TemporaryFolder folder;
  QSettings store(QString::fromStdString((folder.path() / "settings.ini").string()), QSettings::IniFormat);
  AppSettings settings(store);
  EXPECT_FALSE(settings.has_port());
  EXPECT_EQ(settings.port(), PortSettings{});
  store.setValue("COMSetting/PortNumber", -1);
  store.setValue("COMSetting/BaudRate", 9600);
  EXPECT_FALSE(settings.has_port());
  EXPECT_EQ(settings.port().line.baud_rate, 9600u) << "the other values count without a port as well";
  EXPECT_EQ(settings.port().number, 1);
  EXPECT_EQ(settings.debug(), 0);
  PortSettings port;
  port.number = 7;
  port.device = "/dev/ttyUSB7";
  port.description = "Gerät";
  port.line = {19200, 7, 1, 3, 6};
  settings.store_port(port);
  EXPECT_TRUE(settings.has_port());
  EXPECT_EQ(settings.port(), port);
  EXPECT_EQ(store.value("COMSetting/PortNumber"), 7);
  EXPECT_EQ(store.value("COMSetting/StopBits"), 1);
  EXPECT_EQ(store.value("COMSetting/PortDevice"), "/dev/ttyUSB7");
  EXPECT_FALSE(store.contains("COMSetting/Debug"));

  store.setValue("COMSetting/BaudRate", 0);
  store.setValue("COMSetting/DataBits", "garbage");
  store.setValue("COMSetting/Debug", 1);
  EXPECT_EQ(settings.port().line.baud_rate, 19200u);
  EXPECT_EQ(settings.port().line.data_bits, 8);
  EXPECT_EQ(settings.debug(), 1);

  EXPECT_TRUE(settings.recent_files().files().empty());
  const std::vector<std::filesystem::path> files = {folder.path() / "b.dat", folder.path() / "a.dat"};
  settings.store_recent_files(RecentFiles(files));
  EXPECT_EQ(settings.recent_files().files(), files);
}

template <class Window>
Window* visible() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = qobject_cast<Window*>(widget); window && window->isVisible()) return window;
  }
  return nullptr;
}

template <class Window>
Window* wait_for() {
  while (!visible<Window>()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return visible<Window>();
}

struct ProgramBench {
  test::TemporaryFolder folder;
  QSettings store{QString::fromStdString((folder.path() / "settings.ini").string()), QSettings::IniFormat};
  std::atomic<int> probes{0};
  bool present = true;  ///< the one port, COM5
  int ended = -1;

  std::unique_ptr<Program> program(ProgramOptions options = {}) {
    Program::Parts parts;
    parts.device = std::make_unique<InProcessDevice>([](std::span<const std::uint8_t>) {});
    parts.list_ports = [] { return std::vector<PortInfo>{{5, "COM5", "Board (COM5)"}}; };
    parts.probe_port = [this](const std::string&) {
      ++probes;
      return present ? OpenResult{} : OpenResult{OpenError::not_found, "It is not there."};
    };
    parts.end_process = [this](int code) { ended = code; };
    parts.report = [](const std::string&) {};
    auto made = std::make_unique<Program>(options, AppSettings(store), std::move(parts));
    made->start();
    return made;
  }
};

TEST(ProgramStart, WithNothingStoredThePortDialogComesFirstAndItsChoiceIsStored) {
  ProgramBench bench;
  const auto program = bench.program();
  auto* dialog = wait_for<CSerialPortSetting>();
  EXPECT_EQ(program->frame(), nullptr);
  for (auto* button : dialog->findChildren<QPushButton*>()) {
    if (button->text() == "Open") button->click();
  }
  auto* frame = wait_for<CMainFrame>();
  EXPECT_EQ(frame->windowTitle(), "QV512xC Adjustment Program  V 2.3_2");
  EXPECT_EQ(bench.store.value("COMSetting/PortNumber"), 5);
  wait_for<QFileDialog>()->reject();
  QCoreApplication::processEvents();
  frame->close();
  auto* question = wait_for<QMessageBox>();
  question->button(QMessageBox::No)->click();
  while (bench.ended < 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(bench.ended, 0);
}

TEST(ProgramStart, AStoredPortIsTriedAndACancelledDialogLeavesTheDefaults) {
  ProgramBench bench;
  AppSettings(bench.store).store_port({9, "COM9", {19200, 7, 0, 0, 0}, "Nine", 0});
  {
    const auto program = bench.program();
    wait_for<CMainFrame>();
    EXPECT_EQ(bench.probes, 1);
    EXPECT_EQ(visible<CSerialPortSetting>(), nullptr);
  }
  bench.present = false;
  {
    const auto program = bench.program();
    wait_for<CSerialPortSetting>()->reject();
    auto* frame = wait_for<CMainFrame>();
    EXPECT_EQ(frame->findChild<CQV5123View*>()->port()->settings(), PortSettings{});
    EXPECT_EQ(bench.store.value("COMSetting/PortNumber"), 9) << "cancel stores nothing";
  }
  bench.store.setValue("COMSetting/Debug", 1);
  const auto program = bench.program();
  auto* frame = wait_for<CMainFrame>();
  EXPECT_EQ(visible<CSerialPortSetting>(), nullptr) << "debugging never forces the dialog";
  EXPECT_EQ(frame->findChild<CQV5123View*>()->port()->settings().number, 9);
}

}  // namespace
}  // namespace qv5123
