#pragma once

#include <QWidget>
#include <array>

class QCheckBox;
class QLabel;

namespace qv5123 {

/// The eight bits of a byte as check boxes, bit 7 on the left, each under its digit of one label.
class BitBoxes final : public QWidget {
  Q_OBJECT

 public:
  explicit BitBoxes(QWidget* parent = nullptr);

  /// 0..255.
  int bits() const;
  void set_bits(int bits);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 signals:
  /// The user clicked or toggled a box.
  void toggled(int bits);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void space_digits();
  void place();

  QLabel* digits_;
  std::array<QCheckBox*, 8> boxes_{};  // by bit number
};

}  // namespace qv5123
