#include "app/ui/program.h"

#include <gtest/gtest.h>

#include "app/ui/frame.h"
#include "app/ui/help_window.h"
#include "app/ui/qv5123_view.h"
#include "link/in_process_device.h"
#include "link/ui/serial_port_setting.h"
#include "reliability/ui/real_program.h"

namespace qv5123 {
namespace {

QStringList command_line(std::initializer_list<QString> arguments) {
  return QStringList{"QV5123"} + QStringList(arguments);
}

TEST(ProgramOptions, AreReadOrRefusedInOneLine) {
  const test::TemporaryFolder folder;
  const QString file = QString::fromStdString(folder.write("a.dat", "1").string());
  const auto read = std::get<ProgramOptions>(read_options(command_line(
      {"-platform", "offscreen", "--style=fusion", "--port", "COM5", "--settings", file, "--trace", "t"})));
  EXPECT_EQ(read.port, "COM5") << "the toolkit's options are its own";
  EXPECT_EQ(read.setting_file, folder.path() / "a.dat");
  EXPECT_EQ(read.trace, "t");
  EXPECT_FALSE(read.simulate);
  const QString pictures = QString::fromStdString((folder.path() / "x" / "y").string());
  EXPECT_TRUE(std::get<ProgramOptions>(read_options(command_line({"--tour", pictures}))).simulate);
  EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "x" / "y"));

  const auto refused = [](std::initializer_list<QString> arguments) {
    const auto end = std::get<EndAtOnce>(read_options(command_line(arguments)));
    EXPECT_EQ(end.exit_code, 2);
    return end.text.toStdString();
  };
  EXPECT_EQ(refused({"--settings", "/no/such.dat"}), "QV5123: Setting file '/no/such.dat' does not exist.");
  EXPECT_EQ(refused({"--bogus"}), "QV5123: Unknown option 'bogus'.");
  EXPECT_EQ(refused({"--tour", file}), "QV5123: Folder '" + file.toStdString() + "' cannot be made.");
  EXPECT_EQ(refused({"--scene", "flat", "--port", "COM1", "--tour", pictures}),
            "QV5123: Options --scene and --port exclude each other.");
}

TEST(AppSettings, KeepThePortUnderTheNamesOfItsSection) {
  const test::TemporaryFolder folder;
  QSettings store(QString::fromStdString((folder.path() / "settings.ini").string()), QSettings::IniFormat);
  AppSettings settings(store);
  store.setValue("COMSetting/PortNumber", -1);
  store.setValue("COMSetting/BaudRate", 9600);
  EXPECT_FALSE(settings.has_port());
  EXPECT_EQ(settings.port().line.baud_rate, 9600u) << "the other values count without a port as well";
  const PortSettings port{7, "/dev/ttyUSB7", {19200, 7, 1, 3, 6}, "Gerät", 0};
  settings.store_port(port);
  EXPECT_TRUE(settings.has_port());
  EXPECT_EQ(settings.port(), port);
  EXPECT_EQ(store.value("COMSetting/PortNumber"), 7);
  EXPECT_EQ(store.value("COMSetting/StopBits"), 1);
  EXPECT_EQ(store.value("COMSetting/Parity"), 3);
  EXPECT_EQ(store.value("COMSetting/FlowFlags"), 6);
  EXPECT_FALSE(store.contains("COMSetting/Debug"));
  store.setValue("COMSetting/DataBits", "garbage");
  EXPECT_EQ(settings.port().line.data_bits, 8);

  store.setValue("RecentFiles/File1", QString(QChar(0xD800)));
  EXPECT_EQ(settings.recent_files().files().size(), 1u) << "no Unicode text";
  const std::vector<std::filesystem::path> files = {folder.path() / "b.dat", folder.path() / "a.dat"};
  settings.store_recent_files(RecentFiles(files));
  EXPECT_EQ(settings.recent_files().files(), files);
}

template <class Window>
Window* wait_for() {
  test::wait_until([] { return test::visible<Window>() != nullptr; });
  return test::visible<Window>();
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
  for (auto* button : dialog->findChildren<QPushButton*>())
    if (button->text() == "Open") button->click();
  auto* frame = wait_for<CMainFrame>();
  EXPECT_EQ(frame->windowTitle(), "QV512xC Adjustment Program  V 2.3_2");
  EXPECT_NE(bench.folder.read("settings.ini").find("PortNumber=5"), std::string::npos)
      << "on the disk by now";
  auto* chooser = wait_for<QFileDialog>();
  EXPECT_EQ(chooser->windowTitle(), "Load a setting file: Cancel starts without one");
  chooser->reject();
  QCoreApplication::processEvents();
  frame->close();
  auto* question = wait_for<QMessageBox>();
  question->button(QMessageBox::No)->click();
  test::wait_until([&] { return bench.ended >= 0; });
  EXPECT_EQ(bench.ended, 0);
}

TEST(ProgramStart, AStoredPortIsTriedAndACancelledDialogLeavesTheDefaults) {
  ProgramBench bench;
  AppSettings(bench.store).store_port({9, "COM9", {19200, 7, 0, 0, 0}, "Nine", 0});
  {
    const auto program = bench.program();
    wait_for<CMainFrame>();
    EXPECT_EQ(bench.probes, 1);
    EXPECT_EQ(test::visible<CSerialPortSetting>(), nullptr);
  }
  bench.present = false;
  {
    const auto program = bench.program();
    auto* dialog = wait_for<CSerialPortSetting>();
    EXPECT_EQ(dialog->findChild<QLabel*>("why-asked")->text(), "It is not there.");
    dialog->reject();
    auto* frame = wait_for<CMainFrame>();
    EXPECT_EQ(frame->findChild<CQV5123View*>()->port()->settings(), PortSettings{});
    EXPECT_EQ(bench.store.value("COMSetting/PortNumber"), 9) << "cancel stores nothing";
  }
  bench.store.setValue("COMSetting/Debug", 1);
  const auto program = bench.program();
  wait_for<CMainFrame>();
  EXPECT_EQ(test::visible<CSerialPortSetting>(), nullptr) << "debugging never forces the dialog";
}

TEST(ProgramStart, SavesAreVerifiedUntilThatIsSwitchedOffWhichIsStored) {
  ProgramBench bench;
  AppSettings(bench.store).store_port({9, "COM9", {19200, 7, 0, 0, 0}, "Nine", 0});
  for (const bool verifies : {true, false}) {
    const auto program = bench.program();
    auto* frame = wait_for<CMainFrame>();
    auto* check = frame->findChild<QAction*>("verify-saves");
    EXPECT_EQ(check->isChecked(), verifies);
    EXPECT_EQ(frame->findChild<CQV5123View*>()->values().verifies_saves(), verifies);
    check->setChecked(false);
    test::wait_until([&] { return !AppSettings(bench.store).verify_saves(); });
  }
}

TEST(ProgramHelp, AStepBringsTheWindowToTheFrontAlsoWhereItsPageIsShown) {
  ProgramBench bench;
  AppSettings(bench.store).store_port({9, "COM9", {19200, 7, 0, 0, 0}, "Nine", 0});
  const auto program = bench.program();
  auto* frame = wait_for<CMainFrame>();
  wait_for<QFileDialog>()->reject();
  QCoreApplication::processEvents();
  emit frame->topic_wanted("first-steps");
  auto* help = wait_for<HelpWindow>();
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::activeWindow(), help);
  EXPECT_FALSE(frame->findChild<QAction*>("registers")->isEnabled());
  emit help->command_chosen("registers");
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::activeWindow(), frame);
}

}  // namespace
}  // namespace qv5123
