#pragma once

#include <QGridLayout>
#include <QSpinBox>
#include <QWidget>
#include <array>
#include <functional>

#include "tuning/step_table.h"

namespace qv5123 {

/// The 6 x 7 edits of "Image Tune by ISO_step", a row for each image parameter with a "Set" at its end.
class StepGridView : public QWidget {
  Q_OBJECT

 public:
  explicit StepGridView(std::function<void(std::size_t row)> set);

  void show_bank(const StepBank& bank);
  void show_row(std::size_t row, const StepBytes& bytes);
  /// What stands in a row's edits, limits not yet applied.
  StepCells cells(std::size_t row) const;
  StepGrid grid() const;
  /// The same, but for text that is still being typed.
  StepGrid shown_grid() const;

 private:
  StepCells shown_cells(std::size_t row) const;
  void add_row(QGridLayout* grid, std::size_t row);
  QSpinBox* make_cell(std::size_t row, std::size_t step);

  std::array<std::array<QSpinBox*, kStepColumns>, kStepRows> cells_{};
  std::function<void(std::size_t)> set_;
};

}  // namespace qv5123
