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
#include "link/port_name.h"

namespace qv5123 {
namespace {

void fill(QComboBox* list, std::span<const char* const> labels) {
  for (const char* label : labels) list->addItem(QString::fromLatin1(label));
}

bool stands_for(const PortInfo& port, const PortSettings& settings) {
  if (settings.device.empty()) return port.number == settings.number;
  return openable_name(port.device) == openable_name(settings.device);
}

}  // namespace

CSerialPortSetting::CSerialPortSetting(std::vector<PortInfo> ports, const PortSettings& current, Probe probe,
                                       QWidget* parent)
    : QDialog(parent), ports_(std::move(ports)), settings_(current), probe_(std::move(probe)) {
  setWindowTitle(tr("Serial Port Setting"));
  auto* form = new QFormLayout(this);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  add_port_list(*form);
  add_line_lists(*form);
  add_flow_boxes(*form);
  add_send_delay(*form);
  add_buttons(*form);
  show_selection(selection_of(current.line));
}

QComboBox* CSerialPortSetting::list(const QString& name, const QString& tip) {
  auto* made = new QComboBox(this);
  made->setAccessibleName(name);
  made->setToolTip(tip);
  return made;
}

void CSerialPortSetting::add_port_list(QFormLayout& form) {
  port_ = list(tr("Serial Port"), tr("The serial ports that are there now"));
  port_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  port_->setMinimumContentsLength(30);
  for (const PortInfo& port : ports_) port_->addItem(to_qt(port.name));
  const auto current = std::find_if(ports_.begin(), ports_.end(),
                                    [this](const PortInfo& p) { return stands_for(p, settings_); });
  if (current != ports_.end()) port_->setCurrentIndex(static_cast<int>(current - ports_.begin()));
  widen_drop_down();
  form.addRow(tr("Serial Port:"), port_);
}

void CSerialPortSetting::widen_drop_down() {
  int widest = 0;
  for (const PortInfo& port : ports_) {
    widest = std::max(widest, port_->fontMetrics().horizontalAdvance(to_qt(port.name)));
  }
  port_->view()->setMinimumWidth(widest + 5);
}

void CSerialPortSetting::add_line_lists(QFormLayout& form) {
  baud_rate_ = list(tr("Baud Rate"), tr("Bits per second. The chip talks at 19200."));
  data_bits_ = list(tr("Data Bits"), tr("Data bits of a character, 5..8"));
  parity_ = list(tr("Parity"), tr("Parity bit of a character"));
  stop_bits_ = list(tr("Stop Bits"), tr("Stop bits of a character"));
  fill(baud_rate_, kBaudRateLabels);
  fill(data_bits_, kDataBitsLabels);
  fill(parity_, kParityLabels);
  fill(stop_bits_, kStopBitsLabels);
  baud_rate_->setEnabled(false);
  form.addRow(tr("Baud Rate:"), baud_rate_);
  form.addRow(tr("Data Bits:"), data_bits_);
  form.addRow(tr("Parity:"), parity_);
  form.addRow(tr("Stop Bits:"), stop_bits_);
}

void CSerialPortSetting::add_flow_boxes(QFormLayout& form) {
  auto* boxes = new QVBoxLayout;
  const auto add = [&](QCheckBox*& box, const QString& text, const QString& tip) {
    box = new QCheckBox(text, this);
    box->setAccessibleName(text);
    box->setToolTip(tip);
    boxes->addWidget(box);
  };
  add(dtr_dsr_, tr("DTR/DSR"), tr("Hardware flow control by the lines DTR and DSR"));
  add(rts_cts_, tr("RTS/CTS"), tr("Hardware flow control by the lines RTS and CTS"));
  add(xon_xoff_, tr("XON/XOFF"), tr("Software flow control by the characters 0x11 and 0x13"));
  form.addRow(tr("Flow Control:"), boxes);
}

void CSerialPortSetting::add_send_delay(QFormLayout& form) {
  auto* row = new QHBoxLayout;
  auto* delay = new QLineEdit(this);
  delay->setEnabled(false);
  delay->setAccessibleName(tr("Send Delay"));
  delay->setToolTip(tr("Not used"));
  row->addWidget(delay);
  row->addWidget(new QLabel(tr("ms/Byte"), this));
  form.addRow(tr("Send Delay:"), row);
}

void CSerialPortSetting::add_buttons(QFormLayout& form) {
  auto* box = new QDialogButtonBox(this);
  open_ = box->addButton(tr("Open"), QDialogButtonBox::AcceptRole);
  open_->setDefault(true);
  open_->setEnabled(!ports_.empty());
  QPushButton* cancel = box->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
  open_->setAccessibleName(tr("Open port"));
  cancel->setAccessibleName(tr("Cancel port setting"));
  open_->setToolTip(ports_.empty() ? tr("No serial port was found") : tr("Use this port"));
  cancel->setToolTip(tr("Change nothing"));
  connect(box, &QDialogButtonBox::accepted, this, [this] {
    if (!opening_.running()) opening_.start(try_open());
  });
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
  const auto selected = static_cast<std::size_t>(port_->currentIndex());
  if (selected < ports_.size()) {
    result.number = ports_[selected].number;
    result.device = ports_[selected].device;
    result.description = ports_[selected].name;
  }
  result.line = line_from(selection());
  return result;
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
