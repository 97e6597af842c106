#pragma once

#include <QWidget>
#include <optional>

class QScrollArea;
class QToolButton;

namespace qv5123 {

class ControlColumn;

/// How much of the column is shown. The numbers are kept from run to run.
enum class ColumnShape { whole = 0, console = 1, folded = 2 };

/// The column with a handle beside it that folds it away. Until the user chooses a shape the column folds by
/// itself where the page would have to be scrolled sideways.
class ColumnDrawer final : public QWidget {
  Q_OBJECT

 public:
  /// Takes over the column.
  explicit ColumnDrawer(ControlColumn* column);

  ColumnShape shape() const { return shape_; }
  /// The user's choice, -1 where there is none.
  int chosen() const { return chosen_ ? static_cast<int>(*chosen_) : -1; }
  /// An earlier run's chosen().
  void restore(int chosen);
  /// The whole column, the console alone, nothing, and so on.
  void choose_next();
  /// The width that the pages have without the column, and the one that the page needs.
  void leave_room(int has, int needs);

 signals:
  void shape_changed();

 private:
  void choose(ColumnShape shape);
  void take_shape(ColumnShape shape);

  ControlColumn* column_;
  QScrollArea* area_;
  QToolButton* handle_;
  ColumnShape shape_ = ColumnShape::whole;
  std::optional<ColumnShape> chosen_;
};

}  // namespace qv5123
