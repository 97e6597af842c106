#include "tuning/ui/bit_editor_box.h"

#include <QHBoxLayout>

#include "link/indirect_access.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/front_parts.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

BitEditorBox::BitEditorBox(BitEditor& editor) : QGroupBox("Isp Control (1Byte)"), editor_(editor) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 5, 8, 6);
  row->addLayout(make_address());
  auto* grid = new QGridLayout;
  grid->setVerticalSpacing(3);
  grid->addWidget(new QLabel("0"), 1, 0);
  grid->addWidget(new QLabel("1"), 2, 0);
  for (int number = 7; number >= 0; --number) add_bit(grid, number);
  row->addLayout(grid);
  row->addStretch();
  editor_.attach(*this);
}

QGridLayout* BitEditorBox::make_address() {
  auto* address = make_hex_edit(
      HexForm::address, "Bit editor address", "000",
      "ISP address, 3 hex digits, " + registers_text({reg::kIspReadAddress, reg::kIspWriteAddress}));
  connect(address, &QLineEdit::textChanged, this,
          [this](const QString& text) { editor_.type_address(text.toStdString()); });
  auto* field = new QGridLayout;
  add_field(field, 0, "Addr(0xF,000) :", address);
  field->addWidget(make_button("Get Info", {},
                               "Read the byte whose bits are shown, " + register_text(reg::kIspReadAddress),
                               [this] { editor_.press_get_info(); }),
                   1, 1);
  return field;
}

void BitEditorBox::add_bit(QGridLayout* grid, int number) {
  const int column = 8 - number;
  auto* head = new QLabel(QString::number(number));
  head->setAlignment(Qt::AlignCenter);
  grid->addWidget(head, 0, column);
  for (const int value : {0, 1})
    grid->addWidget(make_radio(number, value), value + 1, column, Qt::AlignCenter);
}

/// Both radios of a pair can be off, so nothing keeps them exclusive but show_bits(). Whichever way a click
/// flips one, it was used.
QRadioButton* BitEditorBox::make_radio(int number, int value) {
  auto* radio = named(new QRadioButton, QString("Bit %1 = %2").arg(number).arg(value),
                      QString(value ? "Set bit %1, " : "Clear bit %1, ").arg(number) +
                          registers_text({reg::kIspWriteAddress, reg::kIspWriteData}));
  radio->setAutoExclusive(false);
  connect(radio, &QRadioButton::toggled, this, [this, number, value] { editor_.click(number, value == 1); });
  bits_[static_cast<std::size_t>(number)][static_cast<std::size_t>(value)] = radio;
  return radio;
}

void BitEditorBox::show_bits() {
  const auto byte = editor_.bits();
  for (std::size_t number = 0; number < bits_.size(); ++number)
    for (unsigned value = 0; value < 2; ++value)
      show_checked(bits_[number][value], byte && (*byte >> number & 1u) == value);
}

}  // namespace qv5123
