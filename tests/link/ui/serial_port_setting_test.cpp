#include "link/ui/serial_port_setting.h"

#include <gtest/gtest.h>

#include <QtWidgets>

#include "support/page_driver.h"

namespace qv5123 {
namespace {

const std::vector<PortInfo> kPorts = {{3, "COM3", "Communications Port (COM3)"},
                                      {12, "\\\\.\\COM12", "USB Serial Adapter (COM12)"}};

struct PortDialog {
  OpenResult result;
  std::vector<std::string> probed;
  CSerialPortSetting dialog;

  explicit PortDialog(const PortSettings& current, std::vector<PortInfo> ports = kPorts,
                      const std::string& why_asked = {})
      : dialog(
            std::move(ports), current,
            [this](std::string device) -> Task<OpenResult> {
              probed.push_back(device);
              co_return result;
            },
            why_asked) {
    dialog.show();
  }

  template <class Widget>
  Widget* control(const char* name) {
    return test::find<Widget>(dialog, name);
  }
  /// The list's entries, and behind an arrow the one that is chosen.
  std::string list(const char* name) {
    QStringList texts;
    auto* list = control<QComboBox>(name);
    for (int i = 0; i < list->count(); ++i) texts << list->itemText(i);
    return (texts.join(' ') + " -> " + list->currentText()).toStdString();
  }
  void open() {
    control<QPushButton>("Open port")->click();
    QCoreApplication::processEvents();
  }
};

TEST(SerialPortSetting, ShowsThePortsAndTheStoredLine) {
  PortSettings current;
  current.number = 12;
  current.line = {19200, 7, 1, 2, 5};
  PortDialog bench(current);
  EXPECT_EQ(bench.list("Serial Port"),
            "Communications Port (COM3) USB Serial Adapter (COM12) -> USB Serial Adapter (COM12)");
  EXPECT_EQ(bench.list("Baud Rate"), "2400 4800 9600 19200 38400 57600 115200 230400 -> 19200");
  EXPECT_EQ(bench.list("Data Bits"), "5 6 7 8 -> 7");
  EXPECT_EQ(bench.list("Parity"), "none odd even mark space -> even");
  EXPECT_EQ(bench.list("Stop Bits"), "1 2 -> 2");
  EXPECT_FALSE(bench.control<QComboBox>("Baud Rate")->isEnabled());
  EXPECT_TRUE(bench.control<QCheckBox>("DTR/DSR")->isChecked());
  EXPECT_FALSE(bench.control<QCheckBox>("RTS/CTS")->isChecked());
  EXPECT_TRUE(bench.control<QCheckBox>("XON/XOFF")->isChecked());
  current.device = "com12";
  EXPECT_EQ(PortDialog(current).control<QComboBox>("Serial Port")->currentIndex(), 1)
      << "as a person types it";
}

TEST(SerialPortSetting, OpenProbesAndTakesTheSelections) {
  PortDialog bench({});
  bench.control<QComboBox>("Serial Port")->setCurrentIndex(1);
  bench.control<QComboBox>("Stop Bits")->setCurrentIndex(1);
  bench.control<QComboBox>("Parity")->setCurrentIndex(4);
  bench.control<QCheckBox>("RTS/CTS")->setChecked(true);
  bench.result = {OpenError::busy, "Somebody <b>else</b> has it."};
  bench.open();
  EXPECT_EQ(bench.probed, std::vector<std::string>{"\\\\.\\COM12"});
  auto* box = bench.dialog.findChild<QMessageBox*>();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text().section('\n', 0, 0), "Port COM12 open failed!");
  EXPECT_EQ(box->textFormat(), Qt::PlainText);
  EXPECT_EQ(bench.dialog.settings(), PortSettings{}) << "nothing is taken over yet";
  box->accept();

  bench.result = {};
  bench.open();
  EXPECT_EQ(bench.dialog.result(), QDialog::Accepted);
  EXPECT_EQ(bench.dialog.settings(),
            (PortSettings{12, "\\\\.\\COM12", {19200, 8, 1, 4, 2}, "USB Serial Adapter (COM12)", 0}));
}

TEST(SerialPortSetting, ThePortInUseIsThereAndAnotherCanBeTyped) {
  PortSettings current{0, "/dev/pts/7", {}, "", 0};
  PortDialog bench(current);
  EXPECT_EQ(bench.control<QComboBox>("Serial Port")->currentText(), "/dev/pts/7");
  EXPECT_EQ(bench.control<QComboBox>("Serial Port")->count(), 3);
  bench.control<QComboBox>("Serial Port")->lineEdit()->setText("");
  EXPECT_FALSE(bench.control<QPushButton>("Open port")->isEnabled());
  bench.control<QComboBox>("Serial Port")->lineEdit()->setText(" /tmp/chip ");
  bench.open();
  EXPECT_EQ(bench.dialog.settings(), (PortSettings{0, "/tmp/chip", {}, "/tmp/chip", 0}));

  PortDialog simulated({}, {{-1, "simulated chip", "Simulated chip"}});
  EXPECT_FALSE(simulated.control<QPushButton>("Open port")->isEnabled()) << "not by mistake";
  for (const auto* button : simulated.dialog.findChildren<QPushButton*>())
    EXPECT_NE(button->accessibleName(), "Use the simulated chip");
  simulated.control<QComboBox>("Serial Port")->setCurrentIndex(0);
  simulated.open();
  EXPECT_EQ(simulated.dialog.settings().device, "simulated chip");
}

TEST(SerialPortSetting, AtAStartWithoutAPortTheSimulatedChipIsOneClickAway) {
  PortDialog bench({}, {{-1, "simulated chip", "Simulated chip"}}, "No port was chosen yet.");
  EXPECT_EQ(bench.dialog.findChild<QLabel*>("why-asked")->text(),
            "No port was chosen yet. This computer has no serial port now.");
  bench.control<QPushButton>("Use the simulated chip")->click();
  QCoreApplication::processEvents();
  EXPECT_EQ(bench.probed, std::vector<std::string>{"simulated chip"});
  EXPECT_EQ(bench.dialog.result(), QDialog::Accepted);

  PortDialog none({}, {});
  EXPECT_FALSE(none.control<QPushButton>("Open port")->isEnabled());
  none.control<QPushButton>("Cancel port setting")->click();
  EXPECT_EQ(none.dialog.result(), QDialog::Rejected);
}

}  // namespace
}  // namespace qv5123
