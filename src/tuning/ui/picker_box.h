#pragma once

#include <QGridLayout>
#include <QWidget>

#include <functional>
#include <vector>

#include "tuning/picker_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// The colour picker's controls: its switch, its position, and the keys that move it.
class PickerBox : public QWidget, public PickerDesk::View {
  Q_OBJECT

 public:
  /// The key in the middle.
  struct Key {
    QString caption;
    QString tooltip;
    std::function<void()> pressed;
  };
  /// `switched` are the ISP registers that the switch writes beside AE and AWB.
  PickerBox(PickerDesk& desk, Key key, const std::vector<int>& switched);

  /// Adds a setting of the page's own below the move step.
  void add_setting(const QString& caption, QWidget* setting);

  void take_typed() override { take_typed_text(window()); }
  void show_picker() override;
  void show_keys() override;
  void switched() override { emit switch_changed(); }

 signals:
  /// The page's flag has changed: the user has clicked the switch, or the chip did not follow.
  void switch_changed();

 private:
  void add_row(const QString& caption, QWidget* setting);
  void make_keys(QGridLayout* grid, Key key);
  void add_arrow(QGridLayout* grid, int row, int column, const QString& caption, PickerMove move);

  PickerDesk& desk_;
  QCheckBox* switch_;
  QSpinBox* x_;
  QSpinBox* y_;
  QComboBox* step_;
  QGridLayout* settings_;
  int setting_rows_ = 0;
  QWidget* last_setting_;
  QWidget* keys_;
  std::vector<QPushButton*> arrows_;
  QPushButton* middle_ = nullptr;
  QString caption_;                 // of the key in the middle
  QWidget* focused_key_ = nullptr;  // had the focus when the keys were disabled
};

}  // namespace qv5123
