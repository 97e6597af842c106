#pragma once

#include <QWidget>
#include <array>

#include "console/main_commands.h"

class QBoxLayout;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QToolButton;

namespace qv5123 {

class ConsoleView;

/// The right-hand column of the main form. It knows its controls and what they are called; what they do is
/// said by signals.
class ControlColumn final : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWidth = 340;         ///< with the scroll bar that a low window needs
  static constexpr int kConsoleWidth = 240;  ///< of the console alone

  explicit ControlColumn(QWidget* parent = nullptr);

  ConsoleView& console() { return *console_; }
  /// Without them only the console is there, and its own buttons.
  void show_commands(bool shown);
  void set_port_description(const QString& text);
  /// The setting file's name, with a star where what is in the program differs from it. Empty while none was
  /// chosen.
  void set_setting_file(const QString& path, bool differs);
  /// The paths to offer beside "Load File...", by their positions.
  void set_recent_files(const QStringList& paths);
  int version_slot() const;
  std::array<int, 3> version_numbers() const;
  void set_version_numbers(const std::array<int, 3>& numbers);
  /// A selection that the list does not have shows none.
  void set_osd_pattern(int selection);
  void set_progress(int percent);
  /// Whether there is something to cancel.
  void set_transferring(bool on);

 signals:
  void change_port();
  void load_file();
  void recent_file_chosen(int position);
  void save_file();
  void factory_reset();
  void copy_to_factory();
  void version_slot_chosen(int slot);
  void version_store();
  void osd_pattern_chosen(int selection);
  void osd_key(qv5123::OsdKey key);
  void download_firmware();
  void download_font();
  void send_user_data();
  void cancel_transfer();
  void clear_console();
  void ae_info();
  void awb_info();
  void send_text(const QString& text);

 private:
  using Signal = void (ControlColumn::*)();
  QPushButton* button(const QString& text, const QString& tip, Signal signal);
  void add_port_box(QBoxLayout& column);
  void add_file_box(QBoxLayout& column);
  void add_factory_buttons(QBoxLayout& column);
  void add_version_box(QBoxLayout& column);
  void add_osd_pattern(QBoxLayout& column);
  void add_osd_keys(QBoxLayout& column);
  void add_download_box(QBoxLayout& column);
  void add_console(QBoxLayout& column);
  void add_text_sender();

  QWidget* commands_ = nullptr;
  QLineEdit* port_ = nullptr;
  QToolButton* recent_files_ = nullptr;
  QLabel* setting_file_ = nullptr;
  QComboBox* slot_ = nullptr;
  std::array<QSpinBox*, 3> version_{};
  QComboBox* osd_pattern_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QPushButton* cancel_ = nullptr;
  ConsoleView* console_ = nullptr;
};

}  // namespace qv5123
