#include "link/ui/serial_port_setting.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <span>
#include <utility>

#include "base/ui/qt_text.h"
#include "link/port_list.h"

namespace qv5123 {
namespace {

constexpr const char* kNoPortThere = " This computer has no serial port now.";

void fill(QComboBox* list, std::span<const char* const> labels) {
  for (const char* label : labels) list->addItem(QString::fromLatin1(label));
}

bool stands_for(const PortInfo& port, const PortSettings& settings) {
  if (settings.device.empty()) return port.number == settings.number;
  return openable_name(port.device) == openable_name(settings.device);
}

/// The port in use where the system does not list it: it is away, or of a kind that is not looked for.
PortInfo entry_of(const PortSettings& settings) {
  const std::string device = settings.device.empty() ? comm_device_name(settings.number) : settings.device;
  return {settings.number, device,
          settings.description.empty() ? shown_port(settings) : settings.description};
}

}  // namespace

CSerialPortSetting::CSerialPortSetting(std::vector<PortInfo> ports, const PortSettings& current, Probe probe,
                                       const std::string& why_asked, QWidget* parent)
    : QDialog(parent), ports_(std::move(ports)), settings_(current), probe_(std::move(probe)) {
  setWindowTitle("Serial Port Setting");
  auto* form = new QFormLayout(this);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  add_reason(*form, why_asked);
  add_port_list(*form);
  add_line_lists(*form);
  add_flow_boxes(*form);
  add_send_delay(*form);
  add_buttons(*form, !why_asked.empty() && simulated() >= 0);
  show_selection(selection_of(current.line));
  update_open_button();
}

void CSerialPortSetting::add_reason(QFormLayout& form, const std::string& why_asked) {
  if (why_asked.empty()) return;
  const bool none = std::ranges::none_of(ports_, [](const PortInfo& port) { return port.number >= 0; });
  auto* reason = new QLabel(to_qt(why_asked + (none ? kNoPortThere : "")), this);
  reason->setObjectName("why-asked");
  reason->setTextFormat(Qt::PlainText);
  reason->setWordWrap(true);
  form.addRow(reason);
}

QComboBox* CSerialPortSetting::list(const QString& name, const QString& tip) {
  auto* made = new QComboBox(this);
  made->setAccessibleName(name);
  made->setToolTip(tip);
  return made;
}

void CSerialPortSetting::add_port_list(QFormLayout& form) {
  const bool listed =
      std::ranges::any_of(ports_, [this](const PortInfo& port) { return stands_for(port, settings_); });
  if (!listed && settings_ != PortSettings{}) ports_.insert(ports_.begin(), entry_of(settings_));
  port_ = list("Serial Port", "The serial ports that are there now; the path of another one can be typed");
  port_->setEditable(true);
  port_->setInsertPolicy(QComboBox::NoInsert);
  port_->setCompleter(nullptr);  // a path that is the start of another one is meant as it is
  port_->lineEdit()->setAccessibleName("Serial Port or its path");
  port_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  port_->setMinimumContentsLength(30);
  for (const PortInfo& port : ports_) port_->addItem(to_qt(port.name));
  port_->setCurrentIndex(first_shown());
  widen_drop_down();
  connect(port_, &QComboBox::editTextChanged, this, &CSerialPortSetting::update_open_button);
  form.addRow("Serial Port:", port_);
}

int CSerialPortSetting::first_shown() const {
  const auto position = [this](auto found) {
    return found == ports_.end() ? -1 : static_cast<int>(found - ports_.begin());
  };
  const int current =
      position(std::ranges::find_if(ports_, [this](const PortInfo& p) { return stands_for(p, settings_); }));
  // What has a negative number is no port of this computer, and nothing to open by mistake.
  return current >= 0
             ? current
             : position(std::ranges::find_if(ports_, [](const PortInfo& p) { return p.number >= 0; }));
}

void CSerialPortSetting::update_open_button() {
  const bool chosen = !port_->currentText().trimmed().isEmpty();
  open_->setEnabled(chosen && !opening_.running());
  open_->setToolTip(chosen ? "Use this port" : ports_.empty() ? "No serial port was found" : "Choose a port");
}

void CSerialPortSetting::widen_drop_down() {
  int widest = 0;
  for (const PortInfo& port : ports_) {
    widest = std::max(widest, port_->fontMetrics().horizontalAdvance(to_qt(port.name)));
  }
  port_->view()->setMinimumWidth(widest + 5);
}

void CSerialPortSetting::add_line_lists(QFormLayout& form) {
  baud_rate_ = list("Baud Rate", "Bits per second. The chip talks at 19200.");
  data_bits_ = list("Data Bits", "Data bits of a character, 5..8");
  parity_ = list("Parity", "Parity bit of a character");
  stop_bits_ = list("Stop Bits", "Stop bits of a character");
  fill(baud_rate_, kBaudRateLabels);
  fill(data_bits_, kDataBitsLabels);
  fill(parity_, kParityLabels);
  fill(stop_bits_, kStopBitsLabels);
  baud_rate_->setEnabled(false);
  form.addRow("Baud Rate:", baud_rate_);
  form.addRow("Data Bits:", data_bits_);
  form.addRow("Parity:", parity_);
  form.addRow("Stop Bits:", stop_bits_);
}

void CSerialPortSetting::add_flow_boxes(QFormLayout& form) {
  auto* boxes = new QVBoxLayout;
  const auto add = [&](QCheckBox*& box, const QString& text, const QString& tip) {
    box = new QCheckBox(text, this);
    box->setAccessibleName(text);
    box->setToolTip(tip);
    boxes->addWidget(box);
  };
  add(dtr_dsr_, "DTR/DSR", "Hardware flow control by the lines DTR and DSR");
  add(rts_cts_, "RTS/CTS", "Hardware flow control by the lines RTS and CTS");
  add(xon_xoff_, "XON/XOFF", "Software flow control by the characters 0x11 and 0x13");
  form.addRow("Flow Control:", boxes);
}

void CSerialPortSetting::add_send_delay(QFormLayout& form) {
  auto* row = new QHBoxLayout;
  auto* delay = new QLineEdit(this);
  delay->setEnabled(false);
  delay->setAccessibleName("Send Delay");
  delay->setToolTip("Not used");
  row->addWidget(delay);
  row->addWidget(new QLabel("ms/Byte", this));
  form.addRow("Send Delay:", row);
}

int CSerialPortSetting::simulated() const {
  // What has a negative number is no port of this computer.
  const auto found = std::ranges::find_if(ports_, [](const PortInfo& port) { return port.number < 0; });
  return found == ports_.end() ? -1 : static_cast<int>(found - ports_.begin());
}

// For who has no board at hand yet, and does not know what to choose.
void CSerialPortSetting::offer_simulated(QDialogButtonBox& box) {
  auto* use = box.addButton("Use the simulated chip", QDialogButtonBox::ActionRole);
  use->setAccessibleName(use->text());
  use->setToolTip("Needs no board. \"Change COM Port...\" chooses a real port later.");
  connect(use, &QPushButton::clicked, this, [this] {
    port_->setCurrentIndex(simulated());
    open_chosen();
  });
}

void CSerialPortSetting::open_chosen() {
  if (!opening_.running()) opening_.start(try_open());
}

void CSerialPortSetting::add_buttons(QFormLayout& form, bool offers_simulated) {
  auto* box = new QDialogButtonBox(this);
  open_ = box->addButton("Open", QDialogButtonBox::AcceptRole);
  open_->setDefault(true);
  QPushButton* cancel = box->addButton("Cancel", QDialogButtonBox::RejectRole);
  open_->setAccessibleName("Open port");
  cancel->setAccessibleName("Cancel port setting");
  cancel->setToolTip("Change nothing");
  if (offers_simulated) offer_simulated(*box);
  connect(box, &QDialogButtonBox::accepted, this, &CSerialPortSetting::open_chosen);
  connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  form.addRow(box);
}

void CSerialPortSetting::show_selection(const PortSelection& selection) {
  baud_rate_->setCurrentIndex(selection.baud_rate);
  data_bits_->setCurrentIndex(selection.data_bits);
  parity_->setCurrentIndex(selection.parity);
  stop_bits_->setCurrentIndex(selection.stop_bits);
  dtr_dsr_->setChecked(selection.dtr_dsr);
  rts_cts_->setChecked(selection.rts_cts);
  xon_xoff_->setChecked(selection.xon_xoff);
}

PortSelection CSerialPortSetting::selection() const {
  PortSelection shown;
  shown.baud_rate = baud_rate_->currentIndex();
  shown.data_bits = data_bits_->currentIndex();
  shown.parity = parity_->currentIndex();
  shown.stop_bits = stop_bits_->currentIndex();
  shown.dtr_dsr = dtr_dsr_->isChecked();
  shown.rts_cts = rts_cts_->isChecked();
  shown.xon_xoff = xon_xoff_->isChecked();
  return shown;
}

PortSettings CSerialPortSetting::chosen() const {
  PortSettings result = settings_;
  take_port(result);
  result.line = line_from(selection());
  return result;
}

void CSerialPortSetting::take_port(PortSettings& result) const {
  const QString text = port_->currentText();
  int at = port_->currentIndex();
  if (at < 0 || port_->itemText(at) != text) at = port_->findText(text, Qt::MatchExactly);
  if (at >= 0) {
    const PortInfo& port = ports_[static_cast<std::size_t>(at)];
    result.number = std::max(port.number, 0);
    result.device = port.device;
    result.description = port.name;
    return;
  }
  result.device = from_qt(text.trimmed());
  result.number = port_number_from_name(result.device).value_or(0);
  result.description = result.device;
}

Task<> CSerialPortSetting::try_open() {
  const PortSettings tried = chosen();
  open_->setEnabled(false);
  const OpenResult result = co_await probe_(tried.device);
  open_->setEnabled(true);
  if (!result.ok()) {
    say_probe_failed(tried, result);
    co_return;
  }
  settings_ = tried;
  // Not from here: who waits for the dialog may delete it, and this flow with it.
  QTimer::singleShot(0, this, &QDialog::accept);
}

void CSerialPortSetting::say_probe_failed(const PortSettings& tried, const OpenResult& result) {
  const std::string text = port_probe_fail_text(tried) + (result.text.empty() ? "" : "\n\n" + result.text);
  auto* box = new QMessageBox(QMessageBox::Warning, windowTitle(), to_qt(text), QMessageBox::Ok, this);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

}  // namespace qv5123
