#include "app/ui/control_column.h"

#include <QAction>
#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "app/ui/console_view.h"
#include "app/ui/page_keys.h"
#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/number_edit.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "console/version_box.h"

namespace qv5123 {
namespace {

/// Of an arrow that is held down, milliseconds.
constexpr int kRepeatDelay = 400;
constexpr int kRepeatInterval = 250;

/// The box's frame costs height that the console needs more.
QBoxLayout* box_layout(QGroupBox* box, QBoxLayout::Direction direction) {
  auto* layout = new QBoxLayout(direction, box);
  layout->setContentsMargins(8, 4, 8, 6);
  layout->setSpacing(6);
  return layout;
}

/// As tooltips call the register that a command writes.
QString register_of(const Batch& command) {
  return register_text(command.front().address);
}

/// Two digits, as the version is written; more where the entries hold no digits.
class VersionEdit final : public NumberEdit {
 public:
  VersionEdit() : NumberEdit(0, kVersionNumberMax) {}

 protected:
  QString textFromValue(int value) const override {
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
  }
};

}  // namespace

ControlColumn::ControlColumn(QWidget* parent) : QWidget(parent) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->setSpacing(5);
  commands_ = new QWidget(this);
  auto* commands = new QVBoxLayout(commands_);
  commands->setContentsMargins(0, 0, 0, 0);
  commands->setSpacing(5);
  add_port_box(*commands);
  add_file_box(*commands);
  add_factory_buttons(*commands);
  add_version_box(*commands);
  add_osd_pattern(*commands);
  add_osd_keys(*commands);
  add_download_box(*commands);
  column->addWidget(commands_);
  add_console(*column);
  add_text_sender();
  let_return_set(*this);
}

QPushButton* ControlColumn::button(const QString& text, const QString& tip, Signal signal) {
  auto* made = new QPushButton(text, this);
  made->setToolTip(tip);
  made->setAccessibleName(text);
  made->setAccessibleDescription(tip);
  made->setMinimumWidth(24);
  connect(made, &QPushButton::clicked, this, signal);
  return made;
}

void ControlColumn::add_port_box(QBoxLayout& column) {
  column.addWidget(new QLabel("COM Port (Baudrate = 19200)", this));
  port_ = new QLineEdit(this);
  port_->setReadOnly(true);
  port_->setAccessibleName("COM port");
  port_->setToolTip("The port in use");
  column.addWidget(port_);
  column.addWidget(button("Change COM Port...", "Choose another port or other line settings",
                          &ControlColumn::change_port));
}

void ControlColumn::add_file_box(QBoxLayout& column) {
  auto* box = new QGroupBox("Load/save setting file", this);
  QBoxLayout* rows = box_layout(box, QBoxLayout::TopToBottom);
  auto* row = new QHBoxLayout;
  rows->addLayout(row);
  row->addWidget(button("Load File...", "Load the user data from a setting file into every page",
                        &ControlColumn::load_file));
  recent_files_ = new QToolButton(box);
  recent_files_->setArrowType(Qt::DownArrow);
  recent_files_->setPopupMode(QToolButton::InstantPopup);
  recent_files_->setMenu(new QMenu(recent_files_));
  recent_files_->setAccessibleName("Recent setting files");
  recent_files_->setToolTip("Load one of the setting files used last");
  recent_files_->setEnabled(false);
  row->addWidget(recent_files_);
  row->addWidget(
      button("Save File...", "Save the values of every page to a setting file", &ControlColumn::save_file));
  setting_file_ = new QLabel(box);
  setting_file_->setObjectName("setting-file");
  setting_file_->setTextFormat(Qt::PlainText);
  setting_file_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  setting_file_->hide();
  rows->addWidget(setting_file_);
  column.addWidget(box);
}

void ControlColumn::add_factory_buttons(QBoxLayout& column) {
  column.addWidget(
      button("Factory Reset",
             "The chip returns to its factory settings at once (ISP " + register_text(kFactoryResetAddress) +
                 " = " + to_qt(hex(kFactoryResetValue, 2)) +
                 "). It cannot be taken back: read the pages before, and their values can be saved again.",
             &ControlColumn::factory_reset));
  column.addWidget(button("Current ISP Setting copy to Factory",
                          "The chip's current user data becomes its factory data (" +
                              register_of(qv5123::copy_to_factory()) +
                              "). Asks first: the factory data that it had is lost.",
                          &ControlColumn::copy_to_factory));
}

void ControlColumn::add_version_box(QBoxLayout& column) {
  auto* box = new QGroupBox("Version", this);
  QBoxLayout* row = box_layout(box, QBoxLayout::LeftToRight);
  slot_ = new QComboBox(box);
  for (const char* name : kVersionSlotNames) slot_->addItem(name);
  slot_->setAccessibleName("Version slot");
  slot_->setToolTip("Which of the three version numbers to show (" +
                    registers_text({version_register(0), version_register(1), version_register(2)}) + ")");
  on_choice(slot_, [this](int slot) { emit version_slot_chosen(slot); });
  row->addWidget(slot_, 1);
  for (std::size_t i = 0; i < version_.size(); ++i) {
    version_[i] = new VersionEdit;
    version_[i]->setButtonSymbols(QAbstractSpinBox::NoButtons);
    version_[i]->setAlignment(Qt::AlignCenter);
    version_[i]->setFixedWidth(44);
    version_[i]->setAccessibleName(QStringLiteral("Version number %1").arg(i + 1));
    version_[i]->setToolTip(QStringLiteral("Number %1 of the version, 0..99").arg(i + 1));
    row->addWidget(version_[i]);
  }
  QPushButton* store =
      button("S", "Store the three numbers, send them to the chip and write the setting file",
             &ControlColumn::version_store);
  store->setAccessibleName("Store version");
  store->setFixedWidth(40);
  mark_set(store);
  row->addWidget(store);
  column.addWidget(box);
}

void ControlColumn::add_osd_pattern(QBoxLayout& column) {
  auto* row = new QHBoxLayout;
  auto* label = new QLabel("OSD Pattern Choice", this);
  osd_pattern_ = new QComboBox(this);
  for (const char* name : kOsdPatterns) osd_pattern_->addItem(name);
  osd_pattern_->setAccessibleName("OSD Pattern Choice");
  osd_pattern_->setToolTip("The pattern that the chip shows (" + register_of(osd_pattern(0)) +
                           "); also written to the setting file");
  label->setBuddy(osd_pattern_);
  on_choice(osd_pattern_, [this](int selection) { emit osd_pattern_chosen(selection); });
  row->addWidget(label);
  row->addWidget(osd_pattern_, 1);
  column.addLayout(row);
}

void ControlColumn::add_osd_keys(QBoxLayout& column) {
  struct Key {
    const char* name;
    OsdKey key;
    int row, column;
  };
  static constexpr std::array<Key, 5> kKeys = {{{"Up", OsdKey::up, 0, 1},
                                                {"Set", OsdKey::set, 1, 1},
                                                {"Down", OsdKey::down, 2, 1},
                                                {"Left", OsdKey::left, 1, 0},
                                                {"Right", OsdKey::right, 1, 2}}};
  auto* box = new QGroupBox("OSD MENU Button", this);
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(8, 4, 8, 6);
  grid->setSpacing(4);
  for (const Key& key : kKeys) {
    auto* made = new QPushButton(key.name, box);
    made->setAccessibleName(QStringLiteral("OSD %1").arg(key.name));
    made->setToolTip(QStringLiteral("Key of the chip's on-screen menu (%1 = %2)")
                         .arg(register_of(qv5123::osd_key(key.key)))
                         .arg(static_cast<int>(key.key)));
    made->setAutoRepeat(key.key != OsdKey::set);
    made->setAutoRepeatDelay(kRepeatDelay);
    made->setAutoRepeatInterval(kRepeatInterval);
    connect(made, &QPushButton::clicked, this, [this, key = key.key] { emit osd_key(key); });
    grid->addWidget(made, key.row, key.column);
  }
  column.addWidget(box);
}

void ControlColumn::add_download_box(QBoxLayout& column) {
  auto* box = new QGroupBox("Download", this);
  QBoxLayout* rows = box_layout(box, QBoxLayout::TopToBottom);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(
      button("FW",
             "Send a firmware image of at most 65280 bytes to the chip, which takes it in place "
             "of the one that it has",
             &ControlColumn::download_firmware));
  buttons->addWidget(
      button("FONT",
             "Send a font image of at most 65280 bytes to the chip, which takes it in place of "
             "the one that it has",
             &ControlColumn::download_font));
  buttons->addWidget(
      button("System",
             "Send 1024 bytes of user data to the chip: those of the setting file that is chosen, or with "
             "Cancel in the chooser the present ones. The chip takes them in place of its own.",
             &ControlColumn::send_user_data));
  rows->addLayout(buttons);
  auto* state = new QHBoxLayout;
  progress_ = new QProgressBar(box);
  progress_->setRange(0, 100);
  progress_->setValue(0);
  progress_->setTextVisible(false);
  // Some styles would have it wider than the column.
  progress_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  progress_->setAccessibleName("Download progress");
  progress_->setToolTip("How much of the image has been sent, in percent");
  state->addWidget(progress_, 1);
  state->addWidget(new QLabel("Progressing . . .", box));
  cancel_ = button(
      "Cancel", "End the transfer after the block that is being sent; one that waits for its turn, at once",
      &ControlColumn::cancel_transfer);
  cancel_->setAccessibleName("Cancel download");
  cancel_->setEnabled(false);
  state->addWidget(cancel_);
  rows->addLayout(state);
  column.addWidget(box);
}

void ControlColumn::add_console(QBoxLayout& column) {
  console_ = new ConsoleView(this);
  console_->setAccessibleName("Console");
  console_->setToolTip("What the chip says");
  console_->setMinimumHeight(110);
  column.addWidget(console_, 1);
  auto* row = new QHBoxLayout;
  row->addWidget(button("Clear", "Empty the console", &ControlColumn::clear_console));
  row->addWidget(button("AE Info",
                        "Let the chip print its exposure values (" + register_of(qv5123::ae_info()) + ")",
                        &ControlColumn::ae_info));
  row->addWidget(button(
      "AWB Info", "Let the chip print its white balance values (" + register_of(qv5123::awb_info()) + ")",
      &ControlColumn::awb_info));
  column.addLayout(row);
}

void ControlColumn::add_text_sender() {
  // Kept for whoever enables it from a debugger: no user reaches it.
  auto* text = new QLineEdit(this);
  auto* send = new QPushButton("SEND", this);
  text->setObjectName("manual-text");
  send->setObjectName("manual-send");
  for (QWidget* widget : std::initializer_list<QWidget*>{text, send}) {
    widget->setGeometry(0, 0, 6, 6);
    widget->setEnabled(false);
    widget->setVisible(false);
  }
  connect(send, &QPushButton::clicked, this, [this, text] { emit send_text(text->text()); });
}

void ControlColumn::show_commands(bool shown) {
  commands_->setVisible(shown);
}

void ControlColumn::set_port_description(const QString& text) {
  port_->setText(text);
  port_->setCursorPosition(0);
  port_->setToolTip(text.isEmpty() ? "The port in use" : plain_tool_tip(text));
}

void ControlColumn::set_setting_file(const QString& path, bool differs) {
  setting_file_->setVisible(!path.isEmpty());
  const QString name = QFileInfo(path).fileName() + (differs ? " *" : "");
  if (name == setting_file_->text()) return;
  setting_file_->setText(name);
  setting_file_->setToolTip(plain_tool_tip(path + (differs ? "\nThe program's values differ from it." : "")));
}

void ControlColumn::set_recent_files(const QStringList& paths) {
  QMenu* menu = recent_files_->menu();
  menu->clear();
  menu->setToolTipsVisible(true);
  for (int i = 0; i < paths.size(); ++i) {
    // In a menu's text '&' marks the key.
    const QString name = QFileInfo(paths[i]).fileName().replace(u'&', QStringLiteral("&&"));
    QAction* action = menu->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(name));
    action->setToolTip(plain_tool_tip(paths[i]));
    // Queued, since what it starts makes the menu anew.
    connect(
        action, &QAction::triggered, this, [this, i] { emit recent_file_chosen(i); }, Qt::QueuedConnection);
  }
  recent_files_->setEnabled(!paths.isEmpty());
}

int ControlColumn::version_slot() const {
  return slot_->currentIndex();
}

std::array<int, 3> ControlColumn::version_numbers() const {
  std::array<int, 3> numbers{};
  std::transform(version_.begin(), version_.end(), numbers.begin(), [](QSpinBox* box) {
    box->interpretText();
    return box->value();
  });
  return numbers;
}

void ControlColumn::set_version_numbers(const std::array<int, 3>& numbers) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    version_[i]->setMaximum(std::max(kVersionNumberMax, numbers[i]));
    version_[i]->setValue(numbers[i]);
  }
}

void ControlColumn::set_osd_pattern(int selection) {
  const QSignalBlocker shown(osd_pattern_);
  osd_pattern_->setCurrentIndex(selection);
}

void ControlColumn::set_transferring(bool on) {
  cancel_->setEnabled(on);
}

void ControlColumn::set_progress(int percent) {
  progress_->setValue(std::clamp(percent, 0, 100));
}

}  // namespace qv5123
