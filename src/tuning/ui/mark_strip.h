#pragma once

#include <QWidget>

#include "tuning/value_mark.h"

namespace qv5123 {

/// The thin mark at an edit's left side: a stretch of it for each way in which the value differs, amber for
/// one that was not sent, violet for one that is another on the chip, blue for one that is another in the
/// file.
class MarkStrip final : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWidth = 3;

  /// Marks `edit`, and tells the other values in its tooltip and to assistive tools.
  static void show_mark(QWidget* edit, const ValueMark& mark);

  const ValueMark& mark() const { return mark_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  /// Follows the edit's size.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit MarkStrip(QWidget* edit);
  void set_mark(const ValueMark& mark);
  void tell(const QString& text);

  ValueMark mark_;
  QString told_;  // what was added to the edit's tooltip, so that it can be taken away again
};

/// What is told beside the marks: "Not sent. Chip 12, file 20".
QString mark_text(const ValueMark& mark);

}  // namespace qv5123
