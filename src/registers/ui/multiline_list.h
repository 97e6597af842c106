#pragma once

#include <QStandardItemModel>
#include <QStringList>
#include <QTableView>
#include <map>

#include "base/ui/kept_text.h"

namespace qv5123 {

/// A table of texts whose rows are as tall as their tallest cell: texts are wrapped at words to the width of
/// their column, and CR LF starts a new line. Cells may be edited in place.
class CMultilineList final : public QTableView, public KeptText {
  Q_OBJECT

 public:
  static constexpr int kDefaultWidth = 100;  ///< pixels

  explicit CMultilineList(QWidget* parent = nullptr);

  /// What lies beyond the new size is forgotten.
  void set_size(int columns, int rows);
  int columns() const { return model_.columnCount(); }
  int rows() const { return model_.rowCount(); }
  void set_column_heading(int column, const QString& heading);
  /// Width in device-independent pixels.
  void set_column_width(int column, int width);
  int column_width(int column) const { return columnWidth(column); }
  /// This column also takes the room that all of them leave, and gives up to half of its own where they lack
  /// it.
  void stretch_column(int column);
  /// " " stands for empty, and is what a cell without a text has. A cell outside the grid is ignored.
  void set_cell_text(int column, int row, const QString& text);
  QString cell_text(int column, int row) const;
  /// Whether the cell takes a number in place, which cell_edited() tells; the text stays until it is set.
  /// `choices`, each a number with words behind it, are offered as a list.
  void set_cell_editable(int column, int row, bool editable, const QStringList& choices = {});

  /// -1 for none.
  int selected_row() const;
  /// Pixels: the tallest text of the row and 5 more.
  int row_height(int row) const;
  /// The row at a height in the viewport, -1 for none.
  int row_at(int y) const { return rowAt(y); }

  QSize sizeHint() const override;

  /// The widths of the columns, from which a stretched one grows or shrinks.
  QString kept_text() const override;
  void take_kept(const QString& text) override;

 signals:
  /// A press of the left button was handled; `row` is the row that it selected, -1 for none.
  void row_pressed(int row);
  /// A number was typed or chosen.
  void cell_edited(int column, int row, int number);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void change_layout();
  void lay_out();
  void fill_width();
  void column_dragged(int column, int width);
  void scroll_by_line(int action);
  void show_row(int row);
  void edit_row(int row);
  int width_of(int column) const;
  int total_width() const;
  int total_height() const;

  std::map<int, int> widths_;           // as they were set or dragged
  mutable std::map<int, int> heights_;  // of the rows measured so far
  int stretched_ = -1;
  int wheel_ = 0;  // eighths of a degree not yet scrolled
  bool laying_out_ = false;
  bool layout_due_ = false;
  /// Last: the headers tell of it when it goes.
  QStandardItemModel model_;
};

}  // namespace qv5123
