#pragma once

#include <QGridLayout>
#include <QWidget>

#include <functional>

#include "base/task.h"
#include "console/page_host.h"
#include "tuning/picker.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// The colour picker's controls: its switch, its position, and the keys that move it. It keeps them and the
/// chip in step with the page's values.
class PickerBox : public QWidget {
  Q_OBJECT

 public:
  /// The page's own values, which must outlive the box, and how its picker is switched.
  struct Picker {
    bool& on;
    PickerPosition& position;
    int& step_index;
    /// Tells what went wrong, in words; empty when the chip followed.
    std::function<Task<std::string>(bool on)> switch_chip;
  };
  /// The key in the middle.
  struct Key {
    QString caption;
    QString tooltip;
    std::function<void()> pressed;
  };
  PickerBox(PageHost& host, Picker picker, Key key);

  /// Adds a setting of the page's own below the move step.
  void add_setting(const QString& caption, QWidget* setting);
  /// Shows the page's values. The keys stay as they are.
  void show_values();
  /// While the chip is being switched they wait for it.
  void enable_keys(bool enabled);
  /// Waits until the cursor is where the page says: what is measured before that belongs elsewhere.
  Task<> arrive();
  /// Whether the port was lost or closed since the picker was switched on. The chip may have been without
  /// power and measure nothing: its registers then hold what they always hold.
  bool chip_was_away() const { return picker_.on && host_.link().connection() != connection_; }

 signals:
  /// The page's flag has changed: the user has clicked the switch, or the chip did not follow.
  void switched();
  /// The chip has followed, or did not.
  void settled();

 private:
  void add_row(const QString& caption, QWidget* setting);
  void make_keys(QGridLayout* grid, Key key);
  void add_arrow(QGridLayout* grid, int row, int column, const QString& caption, PickerMove move);
  void move(PickerMove move);
  Task<> send_move(IspBytes position);
  void click_switch(bool on);
  Task<> run_switch();
  void show_keys();
  void send_typed();
  Task<> run_send_typed();

  PageHost& host_;
  Picker picker_;
  QCheckBox* switch_;
  QSpinBox* x_;
  QSpinBox* y_;
  QComboBox* step_;
  QGridLayout* settings_;
  int setting_rows_ = 0;
  QWidget* last_setting_;
  QWidget* keys_;
  QWidget* focused_key_ = nullptr;  // had the focus when the keys were disabled
  bool keys_wanted_ = false;
  bool switching_chip_ = false;
  unsigned connection_ = 0;  // on which the chip was switched
  bool x_typed_ = false;     // and not sent yet
  bool y_typed_ = false;
  Flow switching_;
  Flow typing_;
  FlowSet moves_;
};

}  // namespace qv5123
