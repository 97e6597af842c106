#include "registers/ui/dlg_isp_register.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "base/ui/reading_note.h"
#include "link/indirect_access.h"
#include "registers/hex_edit.h"
#include "registers/kept_registers.h"
#include "registers/ui/bit_boxes.h"
#include "registers/ui/hex_edits.h"
#include "registers/ui/multiline_list.h"
#include "registers/ui/register_columns.h"
#include "registers/ui/register_filter_bar.h"
#include "registers/ui/register_list_model.h"
#include "registers/ui/spin_arrows.h"

namespace qv5123 {
namespace {

constexpr int kBit = 0, kFieldName = 1, kDescription = 2, kSample = 3, kData = 4, kFieldColumns = 5;

constexpr int kFieldMargins = 6;  // around a cell's text, with its grid line

constexpr ColumnLayout kFieldTable[] = {{"Bit", 40, "[7:0]"},
                                        {"Name", 80, ""},
                                        {"Description", 200, ""},
                                        {"Data Sample", 190, ""},
                                        {"Data", 40, " 255"}};

QLabel* label_of(const QString& caption, QWidget* control, const QString& name) {
  auto* label = new QLabel(caption);
  label->setBuddy(control);
  control->setAccessibleName(name);
  return label;
}

void fit_to(QLineEdit* edit, const char* text) {
  const int margins = edit->sizeHint().height() - edit->fontMetrics().height();
  edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QLatin1String(text)) + margins + 12);
}

// The caption grows while a sequence runs; the button does not.
void reserve_width(QPushButton* button, const QString& widest) {
  const QString caption = button->text();
  button->setText(widest);
  button->setMinimumWidth(button->sizeHint().width());
  button->setText(caption);
}

/// The lines of a sample that lists numbers with what they mean, as "0: off"; none of any other sample.
QStringList choices_of(const QString& sample) {
  static const QRegularExpression number_with_words("^\\s*\\d+\\s*:");
  QStringList lines = QString(sample).remove(u'\r').split(u'\n', Qt::SkipEmptyParts);
  const bool all =
      std::ranges::all_of(lines, [](const QString& line) { return line.contains(number_with_words); });
  return all && lines.size() > 1 ? lines : QStringList();
}

QString cell_of(const QString& text) {
  return text.isEmpty() ? QStringLiteral(" ") : text;
}

}  // namespace

CDlgIspRegister::CDlgIspRegister(PageHost& host, QWidget* parent)
    : QWidget(parent),
      category_(new QComboBox),
      filter_(new RegisterFilterBar(favourites_)),
      list_(new QTableView),
      address_(new CMyEditAddress),
      value_(new CMyEditValue),
      name_(new QLineEdit),
      bits_(new BitBoxes),
      fields_(new CMultilineList),
      desk_(host, *this) {
  make_list();
  make_filter();
  make_field_table();
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(make_splitter());
  connect(category_, &QComboBox::currentIndexChanged, this, [this](int index) {
    filter_->clear();
    desk_.choose_category(index);
  });
  // Also the one that is shown already.
  connect(category_, &QComboBox::activated, filter_, &RegisterFilterBar::clear);
  connect_edits();
  set_tab_order();
  list_->setFocus();
  desk_.open();
}

CDlgIspRegister::~CDlgIspRegister() = default;

QWidget* CDlgIspRegister::make_splitter() {
  auto* splitter = keep_choice(new QSplitter);
  splitter->setAccessibleName("Width of the list");
  splitter->setChildrenCollapsible(false);
  for (QBoxLayout* column : {make_list_column(), make_register_column()}) {
    auto* side = new QWidget;
    column->setContentsMargins(0, 0, 0, 0);
    side->setLayout(column);
    splitter->addWidget(side);
  }
  splitter->setStretchFactor(1, 1);
  return splitter;
}

QBoxLayout* CDlgIspRegister::make_list_column() {
  category_->setToolTip("Group of registers in the description; choosing one ends the filter");
  category_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  auto* row = new QHBoxLayout;
  row->addWidget(label_of("Category:", category_, "Category"));
  row->addWidget(category_, 1);
  auto* column = new QVBoxLayout;
  column->addLayout(row);
  column->addWidget(filter_);
  column->addWidget(list_, 1);
  return column;
}

void CDlgIspRegister::make_field_table() {
  fields_->setAccessibleName("Bit fields");
  fields_->setToolTip(
      "Bit fields of the register at the address, with their part of the value. Return or a double click "
      "changes the part in \"Data\"; \"Write\" sends it.");
  connect(fields_, &CMultilineList::cell_edited, this,
          [this](int, int row, int number) { desk_.set_field(static_cast<std::size_t>(row), number); });
  fields_->set_size(kFieldColumns, static_cast<int>(RegisterSheet::kFieldRows));
  for (int column = 0; column < kFieldColumns; ++column) {
    fields_->set_column_heading(column, QLatin1String(kFieldTable[column].heading));
    fields_->set_column_width(column, column_width(kFieldTable[column], *fields_, kFieldMargins));
  }
  fields_->stretch_column(kDescription);
  keep_choice(fields_);
}

QBoxLayout* CDlgIspRegister::make_register_column() {
  auto* column = new QVBoxLayout;
  column->addLayout(make_address_rows());
  column->addWidget(fields_, 1);
  column->addLayout(make_button_rows());
  return column;
}

QBoxLayout* CDlgIspRegister::make_address_rows() {
  address_->setToolTip(
      "Register address, four hexadecimal digits; the arrows keep within 0xF800..0xFFFF, the chip takes the "
      "low 12 bits (" +
      registers_text({reg::kIspWriteAddress, reg::kIspReadAddress}) + "). Enter reads.");
  value_->setToolTip("Register value, 0x00..0xFF");
  name_->setToolTip("Name of the register at the address");
  name_->setEnabled(false);
  fit_to(address_, "0xDDDD");
  fit_to(value_, "0xDDDD");
  auto* address_spin = new SpinArrows("Address");
  auto* value_spin = new SpinArrows("Value");
  connect(address_spin, &SpinArrows::stepped, address_, &CMyHexEdit::step);
  connect(value_spin, &SpinArrows::stepped, value_, &CMyHexEdit::step);
  read_ = make_button("Read", "Reads the register at the address", &RegisterDesk::read);
  mark_command(read_, kReadCommand);
  write_ = make_button("Write", "Writes the value to the address", &RegisterDesk::write);

  auto* grid = new QGridLayout;
  const auto add_edit = [grid](int row, QLabel* label, CMyHexEdit* edit, SpinArrows* spin,
                               QPushButton* button) {
    auto* pair = new QHBoxLayout;
    pair->setSpacing(0);
    pair->addWidget(edit);
    pair->addWidget(spin);
    spin->setFixedHeight(edit->sizeHint().height());
    grid->addWidget(label, row, 0);
    grid->addLayout(pair, row, 1);
    grid->addWidget(button, row, 2);
  };
  add_edit(0, label_of("Address:", address_, "Address"), address_, address_spin, read_);
  add_edit(1, label_of("Value:", value_, "Value"), value_, value_spin, write_);
  grid->addWidget(label_of("Name:", name_, "Name"), 0, 3);
  grid->addWidget(name_, 0, 4);
  grid->addWidget(bits_, 1, 4, Qt::AlignLeft | Qt::AlignVCenter);
  grid->setColumnStretch(4, 1);
  auto* rows = new QVBoxLayout;
  rows->addLayout(grid);
  return rows;
}

QPushButton* CDlgIspRegister::make_button(const QString& caption, const QString& tip,
                                          void (RegisterDesk::*operation)()) {
  auto* button = push_button(caption, tip);
  connect(button, &QPushButton::clicked, this, [this, operation] { (desk_.*operation)(); });
  return button;
}

QBoxLayout* CDlgIspRegister::make_button_rows() {
  load_category_ = make_button("Load From ISP", "Reads all registers of the category, 150 ms each",
                               &RegisterDesk::load_category);
  load_all_ = make_button(RegisterButtons::kLoadAll, "Reads every register of the description, 150 ms each",
                          &RegisterDesk::load_all);
  mark_command(load_category_, kLoadCommand);
  stop_ = make_button("Stop", "Ends the reading of registers, wherever it has come to", &RegisterDesk::stop);
  stop_->setAccessibleName("Stop reading registers");
  stop_->setEnabled(false);
  save_file_ = make_button("Save REG to File...", "Writes the registers read so far to a text file",
                           &RegisterDesk::save_file);
  load_file_ =
      make_button(RegisterButtons::kLoadFile,
                  "Writes the registers of a text file to the chip, at once. What these registers had "
                  "is lost where it was not read before.",
                  &RegisterDesk::load_file);
  QPushButton* flash = make_button(
      "Write REG to Flash",
      QString("Stores the registers 0xF800..0xFFFF in the chip's flash (%1..%2); not available")
          .arg(register_text(KeptRegisters::kBlockNumber), to_qt(hex(KeptRegisters::kEndOfBlock, 2))),
      &RegisterDesk::write_flash);
  flash->setEnabled(false);
  reserve_width(load_all_, "Load All From ISP(100%)");
  auto* upper = new QHBoxLayout;
  for (QPushButton* button : {load_category_, load_all_, stop_}) upper->addWidget(button);
  upper->addStretch();
  auto* lower = new QHBoxLayout;
  for (QPushButton* button : {save_file_, load_file_, flash}) lower->addWidget(button);
  lower->addStretch();
  age_ = make_reading_note([this] { load_category_->click(); });
  auto* rows = new QVBoxLayout;
  rows->addWidget(age_);
  rows->addLayout(upper);
  rows->addLayout(lower);
  return rows;
}

std::string CDlgIspRegister::step_name() const {
  return QString::fromStdU16String(desk_.sheet().address_text()).toStdString() + "'s value";
}

void CDlgIspRegister::set_tab_order() {
  QWidget* last = category_;
  const QList<QWidget*> filter = filter_->controls();
  const auto then = [&last](QWidget* next) {
    setTabOrder(last, next);
    last = next;
  };
  for (QWidget* next : filter) then(next);
  for (QWidget* next : std::initializer_list<QWidget*>{list_, address_, read_, value_, write_}) then(next);
  for (QWidget* box : bits_->findChildren<QCheckBox*>()) then(box);
  for (QWidget* next : std::initializer_list<QWidget*>{fields_, age_, load_category_, load_all_, stop_,
                                                       save_file_, load_file_}) {
    then(next);
  }
}

void CDlgIspRegister::connect_edits() {
  connect(address_, &CMyHexEdit::edited, this, [this] { desk_.type_address(address_->model().text()); });
  connect(address_, &CMyHexEdit::enter_pressed, this, [this] { desk_.read(); });
  connect(value_, &CMyHexEdit::edited, this, [this] { desk_.type_value(value_->model().text()); });
  connect(bits_, &BitBoxes::toggled, this, [this](int bits) { desk_.set_bits(bits); });
}

void CDlgIspRegister::show_register() {
  address_->show_text(desk_.sheet().address_text());
  name_->setText(QString::fromStdU16String(desk_.sheet().name_text()));
  show_favourite();
}

void CDlgIspRegister::show_value() {
  value_->show_text(desk_.sheet().value_text());
  bits_->set_bits(desk_.sheet().value_bits());
}

void CDlgIspRegister::show_fields() {
  const RegBitField empty;
  for (std::size_t i = 0; i < RegisterSheet::kFieldRows; ++i) {
    const RegBitField* field = desk_.sheet().field(i);
    if (!field) field = &empty;
    const int row = static_cast<int>(i);
    fields_->set_cell_text(kBit, row, cell_of(shown_name(field->range)));
    fields_->set_cell_text(kFieldName, row, cell_of(shown_name(field->name)));
    fields_->set_cell_text(kDescription, row, cell_of(QString::fromStdU16String(field->description)));
    fields_->set_cell_text(kSample, row, cell_of(QString::fromStdU16String(field->sample)));
    fields_->set_cell_editable(kData, row, with_bit_field(field->range, 0, 0).has_value(),
                               choices_of(QString::fromStdU16String(field->sample)));
  }
  show_data();
}

void CDlgIspRegister::show_data() {
  for (std::size_t i = 0; i < RegisterSheet::kFieldRows; ++i) {
    fields_->set_cell_text(kData, static_cast<int>(i), QString::fromStdString(desk_.sheet().data(i)));
  }
}

void CDlgIspRegister::show_buttons(const RegisterButtons& buttons) {
  load_category_->setEnabled(buttons.load_category);
  load_all_->setEnabled(buttons.load_all);
  set_caption(load_all_, QString::fromStdString(buttons.load_all_caption));
  stop_->setEnabled(buttons.stop);
  load_file_->setEnabled(buttons.load_file);
  set_caption(load_file_, QString::fromStdString(buttons.load_file_caption));
}

}  // namespace qv5123
