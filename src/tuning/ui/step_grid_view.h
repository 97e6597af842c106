#pragma once

#include <QGridLayout>
#include <QWidget>

#include <functional>

#include "tuning/dynamic_desk.h"
#include "tuning/ui/field_edits.h"

namespace qv5123 {

/// The 6 x 7 edits of "Image Tune by ISO_step", a row for each image parameter with a "Set" at its end. They
/// are those of the bank that the desk says, and are shown with the other `edits`.
class StepGridView : public QWidget {
  Q_OBJECT

 public:
  StepGridView(const DynamicDesk& desk, FieldEdits& edits, std::function<void(std::size_t row)> set);

 private:
  void add_row(QGridLayout* grid, std::size_t row);
  QSpinBox* make_cell(std::size_t row, std::size_t step);
  QString row_tooltip(std::size_t row) const;

  const DynamicDesk& desk_;
  FieldEdits& edits_;
  std::function<void(std::size_t)> set_;
};

}  // namespace qv5123
