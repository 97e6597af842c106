#pragma once

#include <QWidget>

namespace qv5123 {

/// The two arrows of a spin control, one above the other.
class SpinArrows final : public QWidget {
  Q_OBJECT

 public:
  /// `name` is what the arrows step, for tooltips and accessibility.
  explicit SpinArrows(const QString& name, QWidget* parent = nullptr);

 signals:
  /// 1 for up, -1 for down; repeated while an arrow is held.
  void stepped(int direction);
};

}  // namespace qv5123
