#include "tuning/ui/raw_access_boxes.h"

#include <QHBoxLayout>

#include "link/indirect_access.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/front_parts.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {
namespace {

/// How a group calls itself and its fields. The first digit of an ISP address is always F.
struct Group {
  const char* title;
  const char* name;
  const char* address;
  const char* data;
  const char* write;
  const char* read;
  int write_address;  ///< the data goes to the next
  int read_address;

  QString registers() const {
    return registers_text({write_address, write_address + 1}) + " to write, " + register_text(read_address) +
           " to read";
  }
};
/// By Access.
constexpr std::array<Group, 3> kGroups{
    {{"ISP/TX Control (1Byte)", "1Byte", "Addr(0xF,000)", "Data(0x, 00)", "Write(1Byte)", "Read(1Byte)",
      reg::kIspWriteAddress, reg::kIspReadAddress},
     {"ISP Control (2Byte)", "2Byte", "Addr(0xF,000)", "Data(0x,0000)", "Write(2Byte)", "Read(2Byte)",
      reg::kIspWideWriteAddress, reg::kIspWideReadAddress},
     {"Sensor Register", "Sensor", "Addr(0x,0000)", "Data(0x,0000)", "Write", "Read",
      reg::kSensorWriteAddress, reg::kSensorReadAddress}}};

const Group& group_of(Access access) {
  return kGroups[static_cast<std::size_t>(access)];
}

const char* form_text(HexForm form) {
  if (form == HexForm::byte) return "2 hex digits, ";
  return form == HexForm::address ? "3 hex digits, " : "2 to 4 hex digits, ";
}

std::string utf8(const QLineEdit* edit) {
  return edit->text().toStdString();
}

}  // namespace

RawAccessBoxes::RawAccessBoxes(RawAccessDesk& desk) : desk_(desk) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  for (const Access access : {Access::isp_byte, Access::isp_word, Access::sensor})
    row->addWidget(make_access(access), 1);
  row->addWidget(make_dump(), 1);
  desk_.attach(*this);
}

QWidget* RawAccessBoxes::make_access(Access access) {
  auto* box = new QGroupBox(group_of(access).title);
  QGridLayout* grid = tight_grid(box);
  make_fields(access, grid);
  grid->addLayout(make_buttons(access), 2, 0, 1, 3);
  return box;
}

void RawAccessBoxes::make_fields(Access access, QGridLayout* grid) {
  const Group& group = group_of(access);
  const QString name = group.name;
  const HexForm address = address_form(access);
  const HexForm data = data_form(access);
  fields(access) = {make_hex_edit(address, name + " address", access == Access::sensor ? "0000" : "000",
                                  QString("Address, ") + form_text(address) + group.registers()),
                    make_hex_edit(data, name + " data", access == Access::isp_byte ? "00" : "0000",
                                  QString("Data, ") + form_text(data) + group.registers())};
  grid->addWidget(label_for(fields(access).address, group.address), 0, 0);
  grid->addWidget(fields(access).address, 0, 1, 1, 2);
  grid->addWidget(label_for(fields(access).data, group.data), 1, 0);
  grid->addWidget(fields(access).data, 1, 1, 1, access == Access::isp_byte ? 1 : 2);
  if (access == Access::isp_byte) add_spin(grid);
}

void RawAccessBoxes::add_spin(QGridLayout* grid) {
  QLineEdit* data = fields(Access::isp_byte).data;
  data_spin_ = make_number(0, 255, "1Byte data spin", "The data in decimal, 0..255");
  connect(data_spin_, &QSpinBox::valueChanged, data,
          [data](int value) { data->setText(QString::fromStdString(field_of_byte(value))); });
  grid->addWidget(data_spin_, 1, 2);
}

QLayout* RawAccessBoxes::make_buttons(Access access) {
  const Group& group = group_of(access);
  const QString prefix = access == Access::sensor ? "Sensor " : "";
  auto* row = new QHBoxLayout;
  row->setSpacing(5);
  row->addWidget(make_button(group.write, prefix + group.write, group.registers(), [this, access] {
    desk_.write(access, utf8(fields(access).address), utf8(fields(access).data));
  }));
  row->addWidget(make_button(group.read, prefix + group.read, group.registers(),
                             [this, access] { desk_.read(access, utf8(fields(access).address)); }));
  return row;
}

QWidget* RawAccessBoxes::make_dump() {
  auto* box = new QGroupBox("Dump");
  QGridLayout* grid = tight_grid(box);
  const QString tooltip = "ISP address, 3 hex digits, " + register_text(reg::kDump);
  auto* start = make_hex_edit(HexForm::address, "Address Start", "000", tooltip);
  auto* end = make_hex_edit(HexForm::address, "Address End", "000", tooltip);
  add_field(grid, 0, "Address Start", start);
  add_field(grid, 1, "Address End", end);
  grid->addWidget(make_button("Dump", {}, "Show the registers of the range, " + register_text(reg::kDump),
                              [this, start, end] { desk_.dump(utf8(start), utf8(end)); }),
                  2, 0, 1, 2);
  return box;
}

void RawAccessBoxes::show_answer(Access access, const std::string& field) {
  fields(access).data->setText(QString::fromStdString(field));
  if (access == Access::isp_byte) show_value(data_spin_, byte_of_field(field));
}

void RawAccessBoxes::show_written(int byte) {
  show_value(data_spin_, byte);
}

}  // namespace qv5123
