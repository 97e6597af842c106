#pragma once

#include <QAbstractScrollArea>
#include <QStandardItemModel>
#include <map>
#include <utility>

class QHeaderView;

namespace qv5123 {

/// A grid of texts whose rows are as tall as their tallest cell: texts are wrapped at words to the width of
/// their column, and CR LF starts a new line.
class CMultilineList final : public QAbstractScrollArea {
  Q_OBJECT

 public:
  static constexpr int kDefaultWidth = 100;  ///< pixels

  explicit CMultilineList(QWidget* parent = nullptr);

  /// What lies beyond the new size is forgotten.
  void set_size(int columns, int rows);
  int columns() const { return columns_; }
  int rows() const { return rows_; }
  void set_column_heading(int column, const QString& heading);
  QString column_heading(int column) const;
  /// Width in device-independent pixels.
  void set_column_width(int column, int width);
  int column_width(int column) const;
  /// " " stands for empty, and is what a cell without a text has. A cell outside the grid is ignored.
  void set_cell_text(int column, int row, const QString& text);
  QString cell_text(int column, int row) const;

  /// -1 for none.
  int selected_row() const { return selected_row_; }
  /// Pixels: the tallest text of the row and 5 more.
  int row_height(int row) const;
  /// The row at a height in the viewport, -1 for none.
  int row_at(int y) const;

  QSize sizeHint() const override;

 signals:
  /// A press of the left button was handled; `row` is the row that it selected, -1 for none.
  void row_pressed(int row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void mousePressEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  struct Column {
    int width = kDefaultWidth;
    QString heading = QStringLiteral(" ");
  };

  void change_layout();
  void lay_out();
  void lay_out_header();
  void lay_out_scroll_bars();
  void column_dragged(int column, int width);
  void scroll_by_line(int action);
  void show_row(int row);
  int row_top(int row) const;
  int total_height() const { return row_top(rows_); }
  int total_width() const;
  void paint_row(QPainter& painter, const QRect& row_rect, int row) const;

  QHeaderView* header_;
  QStandardItemModel header_model_;
  int columns_ = 0;
  int rows_ = 0;
  std::map<int, Column> column_table_;
  std::map<std::pair<int, int>, QString> cells_;  // by column and row
  mutable std::map<int, int> heights_;            // of the rows measured so far
  int selected_row_ = -1;
  int wheel_ = 0;  // eighths of a degree not yet scrolled
  bool laying_out_ = false;
  bool layout_due_ = false;
};

}  // namespace qv5123
