#pragma once

#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>

#include <array>

#include "tuning/bit_editor.h"

namespace qv5123 {

/// "Isp Control (1Byte)": an address, and eight pairs of radios for the bits of its byte. No radio is on
/// while the bits are unknown.
class BitEditorBox : public QGroupBox, private BitEditor::View {
  Q_OBJECT

 public:
  explicit BitEditorBox(BitEditor& editor);

 private:
  QGridLayout* make_address();
  void add_bit(QGridLayout* grid, int number);
  QRadioButton* make_radio(int number, int value);
  void show_bits() override;

  BitEditor& editor_;
  /// By bit number; the radio "0", then the radio "1".
  std::array<std::array<QRadioButton*, 2>, 8> bits_{};
};

}  // namespace qv5123
