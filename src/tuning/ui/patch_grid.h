#pragma once

#include <QButtonGroup>
#include <QWidget>

#include <array>

#include "tuning/matrix.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// The 24 patches of the chart, one of them chosen, with what was measured or typed for each.
class PatchGrid : public QWidget {
  Q_OBJECT

 public:
  /// The page's own values, which must outlive the grid.
  PatchGrid(MeasuredColours& measured, std::size_t& chosen);

  void show_values();
  /// Lets the edits of the chosen patch, of all or of none be typed into.
  enum class Typing { none, chosen, all };
  void allow(Typing typing);

 signals:
  void edited();
  void chosen();

 private:
  void add_header(QGridLayout* grid, int column);
  void add_patch(QGridLayout* grid, std::size_t patch);
  void add_edit(QGridLayout* grid, std::size_t patch, std::size_t colour);

  MeasuredColours& measured_;
  std::size_t& chosen_;
  QButtonGroup* choice_;
  std::array<std::array<QSpinBox*, 3>, kPatches> edits_{};
};

}  // namespace qv5123
