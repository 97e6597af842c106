#pragma once

#include <QButtonGroup>
#include <QWidget>

#include <array>

#include "tuning/matrix_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// The 24 patches of the chart, one of them chosen, with what was measured or typed for each.
class PatchGrid : public QWidget {
  Q_OBJECT

 public:
  /// The desk must outlive the grid.
  explicit PatchGrid(MatrixDesk& desk);

  void show_values();
  /// Lets only those edits be typed into that the desk says.
  void show_typing();

 private:
  void add_header(QGridLayout* grid, int column);
  void add_patch(QGridLayout* grid, std::size_t patch);
  void add_edit(QGridLayout* grid, std::size_t patch, std::size_t colour);

  MatrixDesk& desk_;
  QButtonGroup* choice_;
  std::array<std::array<QSpinBox*, 3>, kPatches> edits_{};
};

}  // namespace qv5123
