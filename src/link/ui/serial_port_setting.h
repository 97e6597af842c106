#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "base/task.h"
#include "link/port_list.h"
#include "link/port_settings.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QPushButton;

namespace qv5123 {

/// The dialog "Serial Port Setting": the user picks a port and its line settings. It ends with OK only for a
/// port that can be opened.
class CSerialPortSetting final : public QDialog {
  Q_OBJECT

 public:
  /// Tells whether a device can be opened.
  using Probe = std::function<Task<OpenResult>(std::string device)>;

  /// `current` is what the lists show first; its port is among them wherever it was found. `why_asked` says
  /// why the dialog came by itself; empty where the user asked for it. Every call is made while the dialog
  /// exists.
  CSerialPortSetting(std::vector<PortInfo> ports, const PortSettings& current, Probe probe,
                     const std::string& why_asked = {}, QWidget* parent = nullptr);

  /// What was chosen; `current` until "Open" went well.
  const PortSettings& settings() const { return settings_; }

 private:
  QComboBox* list(const QString& name, const QString& tip);
  void add_reason(QFormLayout& form, const std::string& why_asked);
  void offer_simulated(QDialogButtonBox& box);
  int simulated() const;
  void open_chosen();
  void add_port_list(QFormLayout& form);
  int first_shown() const;
  void update_open_button();
  void add_line_lists(QFormLayout& form);
  void add_flow_boxes(QFormLayout& form);
  void add_send_delay(QFormLayout& form);
  void add_buttons(QFormLayout& form, bool offers_simulated);
  void widen_drop_down();
  void show_selection(const PortSelection& selection);
  PortSelection selection() const;
  PortSettings chosen() const;
  void take_port(PortSettings& result) const;
  Task<> try_open();
  void say_probe_failed(const PortSettings& tried, const OpenResult& result);

  std::vector<PortInfo> ports_;
  PortSettings settings_;
  const Probe probe_;
  QComboBox* port_ = nullptr;
  QComboBox* baud_rate_ = nullptr;
  QComboBox* data_bits_ = nullptr;
  QComboBox* parity_ = nullptr;
  QComboBox* stop_bits_ = nullptr;
  QCheckBox* dtr_dsr_ = nullptr;
  QCheckBox* rts_cts_ = nullptr;
  QCheckBox* xon_xoff_ = nullptr;
  QPushButton* open_ = nullptr;
  Flow opening_;
};

}  // namespace qv5123
