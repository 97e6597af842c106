#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "link/indirect_access.h"
#include "tuning/ui/dlg_isp_front.h"
#include "tuning/userdata_parameters.h"

/// How the page is put together.
namespace qv5123 {
namespace {

/// How a raw access group calls itself and its fields. The first digit of an ISP address is always F.
struct RawGroup {
  const char* title;
  const char* name;
  const char* address;
  const char* data;
  const char* write;
  const char* read;
  const char* registers;
};
constexpr std::array<RawGroup, 3> kRawGroups{
    {{"ISP/TX Control (1Byte)", "1Byte", "Addr(0xF,000)", "Data(0x, 00)", "Write(1Byte)", "Read(1Byte)",
      "registers 0x92, 0x93 to write, 0x94 to read"},
     {"ISP Control (2Byte)", "2Byte", "Addr(0xF,000)", "Data(0x,0000)", "Write(2Byte)", "Read(2Byte)",
      "registers 0x95, 0x96 to write, 0x97 to read"},
     {"Sensor Register", "Sensor", "Addr(0x,0000)", "Data(0x,0000)", "Write", "Read",
      "registers 0x98, 0x99 to write, 0x9A to read"}}};

/// Of these numbers the low byte is used; more is not refused.
constexpr int kHighestByteSource = 0xFFFF;

QGridLayout* tight_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setVerticalSpacing(3);
  grid->setHorizontalSpacing(5);
  grid->setContentsMargins(8, 5, 8, 6);
  return grid;
}

QLabel* label_for(QWidget* buddy, const QString& text) {
  auto* label = new QLabel(text);
  label->setBuddy(buddy);
  return label;
}

QLineEdit* make_hex_edit(const QString& name, const QString& text, const QString& tooltip) {
  auto* edit = named(new QLineEdit(text), name, tooltip);
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance("0000") + 16);
  return edit;
}

void add_field(QGridLayout* grid, int row, const QString& caption, QWidget* field) {
  grid->addWidget(label_for(field, caption), row, 0);
  grid->addWidget(field, row, 1);
}

}  // namespace

CDlgIspFront::CDlgIspFront(PageHost& host) : TuningPage(host) {
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  auto* settings = new QHBoxLayout;
  auto* bits = new QHBoxLayout;
  auto* raw = new QHBoxLayout;
  page->addLayout(settings);
  settings->addWidget(make_video_group(), 3);
  settings->addWidget(make_tdn_group(), 2);
  settings->addWidget(make_clamp_group(), 2);
  settings->addWidget(make_task_column(), 2);
  page->addLayout(bits);
  bits->addWidget(make_flag_group(), 1);
  bits->addWidget(make_bit_group(), 1);
  page->addLayout(raw);
  for (const Access access : {Access::IspByte, Access::IspWord, Access::Sensor})
    raw->addWidget(make_raw_group(access), 1);
  raw->addWidget(make_dump_group(), 1);
  page->addLayout(make_chip_row());
  service_area_ = make_service_area();
  page->addWidget(service_area_, 1000);
  page->addStretch(1);
  service_area_->hide();
  // What the chip does not report comes from the file, and all of it where there is no chip: saving the page
  // must not replace what the file said.
  if (document().user_data.loaded()) qv5123::reload_from_user_data(values_, document().user_data);
  fit_tdn_list();
  show_values();
  show_bits();
  // The page's first control would set the chip's video mode at the first arrow key or turn of the wheel.
  load_isp_->setFocus();
  load_from_isp();
}

QWidget* CDlgIspFront::make_video_group() {
  auto* group = new QGroupBox("Video");
  QGridLayout* grid = tight_grid(group);
  video_mode_ = make_combo(items_of(kFrontVideoModes), "Video Mode", register_text(0x6E),
                           [this](int) { use(FrontControl::VideoMode); });
  add_field(grid, 0, "Video Mode", video_mode_);
  colour_order_ = make_combo(items_of(kColourOrders), "RGB Order", register_text(0x6F),
                             [this](int) { use(FrontControl::ColourOrder); });
  add_field(grid, 1, "RGB Order", colour_order_);
  grid->addWidget(make_set_button("S", "RGB Order", "Keep the order in the user data, " + register_text(0x6F),
                                  [this] { use(FrontControl::SaveColourOrder); }),
                  1, 2);
  led_dimmer_ = add_byte_row(grid, 2, kHighestByteSource, "LED Dimmer", "0..88, " + register_text(0x8D),
                             FrontControl::LedDimmer);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(3, 1);
  return group;
}

QSpinBox* CDlgIspFront::add_byte_row(QGridLayout* grid, int row, int highest, const QString& caption,
                                     const QString& tooltip, FrontControl control) {
  QSpinBox* box = make_number(0, highest, caption, tooltip);
  add_field(grid, row, caption, box);
  grid->addWidget(make_set_button("S", caption, tooltip, [this, control] { use(control); }), row, 2);
  return box;
}

QWidget* CDlgIspFront::make_tdn_group() {
  auto* group = new QGroupBox("TDN");
  QGridLayout* grid = tight_grid(group);
  tdn_mode_ = make_combo({}, "TDN Mode", register_text(0x70), [this](int) { use(FrontControl::TdnMode); });
  add_field(grid, 0, "Mode", tdn_mode_);
  delay_ = add_byte_row(grid, 1, 255, "Delay", range_text(0, 255, 0x71), FrontControl::Delay);
  ir_on_off_ =
      add_byte_row(grid, 2, kHighestByteSource, "IR On/Off", range_text(0, 255, 0x74), FrontControl::IrOnOff);
  grid->addWidget(new QLabel("Polarity"), 3, 0);
  grid->addLayout(make_polarity_row(), 3, 1);
  return group;
}

QLayout* CDlgIspFront::make_polarity_row() {
  auto* row = new QHBoxLayout;
  minus_ = make_button("-", "Polarity -", "0, " + register_text(0xAA), [this] { set_polarity(0); });
  plus_ = make_button("+", "Polarity +", "1, " + register_text(0xAA), [this] { set_polarity(1); });
  for (QPushButton* sign : {minus_, plus_}) {
    sign->setMaximumWidth(40);
    row->addWidget(sign);
  }
  row->addStretch();
  return row;
}

QWidget* CDlgIspFront::make_clamp_group() {
  auto* group = new QGroupBox("Clamp");
  QGridLayout* grid = tight_grid(group);
  constexpr std::array kControls{FrontControl::ClampR, FrontControl::ClampGr, FrontControl::ClampGb,
                                 FrontControl::ClampB};
  for (std::size_t i = 0; i < kClamps.size(); ++i) {
    const int row = static_cast<int>(i);
    const QString tooltip = range_text(0, 4095, kClamps[i].address);
    // More than 12 bits are not refused.
    clamp_[i] = make_number(0, 0xFFFF, kClamps[i].caption, tooltip);
    add_field(grid, row, kClamps[i].caption, clamp_[i]);
    grid->addWidget(
        make_set_button("S", kClamps[i].caption, tooltip, [this, control = kControls[i]] { use(control); }),
        row, 2);
  }
  return group;
}

QWidget* CDlgIspFront::make_task_column() {
  auto* column = new QWidget;
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* wdr = new QGroupBox("WDR Task");
  wdr_state_ = make_combo(items_of(kWdrStates), "WDR State", register_text(0x89),
                          [this](int) { use(FrontControl::WdrState); });
  add_field(tight_grid(wdr), 0, "State", wdr_state_);
  auto* tasks = new QGroupBox("AE/AWB Task");
  QGridLayout* grid = tight_grid(tasks);
  grid->addWidget(make_flag(FrontFlag::AeTask), 0, 0);
  grid->addWidget(make_flag(FrontFlag::AwbTask), 1, 0);
  layout->addWidget(wdr);
  layout->addWidget(tasks);
  layout->addStretch();
  return column;
}

QCheckBox* CDlgIspFront::make_flag(FrontFlag flag) {
  const auto place = static_cast<std::size_t>(flag);
  flags_[place] = make_check(kFrontFlags[place].caption, {}, register_text(kFrontFlags[place].address),
                             [this, flag](bool checked) { set_flag(flag, checked); });
  return flags_[place];
}

QWidget* CDlgIspFront::make_flag_group() {
  auto* group = new QGroupBox("ISP Flag");
  QGridLayout* grid = tight_grid(group);
  constexpr int kColumns = 3;
  int place = 0;
  for (; place < static_cast<int>(FrontFlag::AeTask); ++place)
    grid->addWidget(make_flag(static_cast<FrontFlag>(place)), place / kColumns, place % kColumns);
  color_suppress_ = make_check("Color Suppress", {}, "0 or 128, " + register_text(0xAB),
                               [this](bool) { use(FrontControl::ColorSuppress); });
  grid->addWidget(color_suppress_, place / kColumns, place % kColumns);
  return group;
}

QWidget* CDlgIspFront::make_bit_group() {
  auto* group = new QGroupBox("Isp Control (1Byte)");
  auto* row = new QHBoxLayout(group);
  row->setContentsMargins(8, 5, 8, 6);
  bit_address_ =
      make_hex_edit("Bit editor address", "000", "ISP address, 3 hex digits, registers 0x94, 0x92");
  auto* field = new QGridLayout;
  add_field(field, 0, "Addr(0xF,000) :", bit_address_);
  field->addWidget(make_button("Get Info", {}, "Read the byte whose bits are shown, register 0x94",
                               [this] { press_get_info(); }),
                   1, 1);
  row->addLayout(field);
  auto* grid = new QGridLayout;
  grid->setVerticalSpacing(3);
  grid->addWidget(new QLabel("0"), 1, 0);
  grid->addWidget(new QLabel("1"), 2, 0);
  for (int number = 7; number >= 0; --number) add_bit(grid, number);
  row->addLayout(grid);
  row->addStretch();
  return group;
}

void CDlgIspFront::add_bit(QGridLayout* grid, int number) {
  const int column = 8 - number;
  auto* head = new QLabel(QString::number(number));
  head->setAlignment(Qt::AlignCenter);
  grid->addWidget(head, 0, column);
  auto* pair = new QButtonGroup(this);
  for (const int value : {0, 1}) {
    auto* radio =
        named(new QRadioButton, QString("Bit %1 = %2").arg(number).arg(value),
              QString(value ? "Set bit %1" : "Clear bit %1").arg(number) + ", registers 0x92, 0x93");
    connect(radio, &QRadioButton::clicked, this, [this, number, value] { click_bit(number, value == 1); });
    pair->addButton(radio, value);
    bits_[static_cast<std::size_t>(number)][static_cast<std::size_t>(value)] = radio;
    grid->addWidget(radio, value + 1, column, Qt::AlignCenter);
  }
}

QWidget* CDlgIspFront::make_raw_group(Access access) {
  const RawGroup& texts = kRawGroups[static_cast<std::size_t>(access)];
  RawFields& fields = raw_[static_cast<std::size_t>(access)];
  const QString name = texts.name;
  const QString suffix = QString(", ") + texts.registers;
  const bool is_byte = access == Access::IspByte;
  auto* group = new QGroupBox(texts.title);
  QGridLayout* grid = tight_grid(group);
  fields.address = make_hex_edit(name + " address", access == Access::Sensor ? "0000" : "000",
                                 (is_byte ? "Address, 3 hex digits" : "Address, 2 to 4 hex digits") + suffix);
  fields.data = make_hex_edit(name + " data", is_byte ? "00" : "0000",
                              (is_byte ? "Data, 2 hex digits" : "Data, 2 to 4 hex digits") + suffix);
  const int width = is_byte ? 1 : 2;
  grid->addWidget(label_for(fields.address, texts.address), 0, 0);
  grid->addWidget(fields.address, 0, 1, 1, 2);
  grid->addWidget(label_for(fields.data, texts.data), 1, 0);
  grid->addWidget(fields.data, 1, 1, 1, width);
  if (is_byte) {
    data_spin_ = make_number(0, 255, name + " data spin", "The data in decimal, 0..255");
    connect(data_spin_, &QSpinBox::valueChanged, fields.data,
            [data = fields.data](int value) { data->setText(QString::fromStdString(field_of_byte(value))); });
    grid->addWidget(data_spin_, 1, 2);
  }
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(5);
  const QString prefix = access == Access::Sensor ? "Sensor " : "";
  buttons->addWidget(
      make_button(texts.write, prefix + texts.write, texts.registers, [this, access] { write_raw(access); }));
  buttons->addWidget(make_button(texts.read, prefix + texts.read, texts.registers, [this, access] {
    const int address = raw_address(access);
    Batch request = access == Access::IspByte   ? isp_read_request(address)
                    : access == Access::IspWord ? isp_wide_read_request(address)
                                                : sensor_read_request(address);
    spawn(read(access, address, std::move(request)));
  }));
  grid->addLayout(buttons, 2, 0, 1, 3);
  return group;
}

QWidget* CDlgIspFront::make_dump_group() {
  auto* group = new QGroupBox("Dump");
  QGridLayout* grid = tight_grid(group);
  const QString tooltip = "ISP address, 3 hex digits, " + register_text(reg::kDump);
  dump_start_ = make_hex_edit("Address Start", "000", tooltip);
  dump_end_ = make_hex_edit("Address End", "000", tooltip);
  add_field(grid, 0, "Address Start", dump_start_);
  add_field(grid, 1, "Address End", dump_end_);
  grid->addWidget(make_button("Dump", {}, "Show the registers of the range, " + register_text(reg::kDump),
                              [this] { dump(); }),
                  2, 0, 1, 2);
  return group;
}

QLayout* CDlgIspFront::make_chip_row() {
  auto* row = new QHBoxLayout;
  load_isp_ = make_button("Load Isp", {}, "Read the settings from the chip, " + register_text(kFrontQuery),
                          [this] { load_from_isp(); });
  row->addWidget(load_isp_);
  row->addWidget(make_button("File/Flash Save", {}, "Write the user data file and send all settings to keep",
                             [this] { save(run_save()); }));
  row->addStretch();
  return row;
}

QWidget* CDlgIspFront::make_service_area() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  auto* column = new QVBoxLayout;
  text_ = make_log("ISP tune console", "Reads, writes and parameter values");
  row->addWidget(text_, 1);
  row->addLayout(column);
  column->addWidget(make_userdata_group());
  play_ = make_button(kPlayCaption, {}, "Write the registers of a text file, one every 200 ms",
                      [this] { press_play(); });
  column->addWidget(play_);
  column->addStretch();
  return area;
}

QWidget* CDlgIspFront::make_userdata_group() {
  auto* group = new QGroupBox("Userdata Control");
  QGridLayout* grid = tight_grid(group);
  parameter_ =
      make_combo({}, "Userdata Title", "Parameter, registers 0xAC..0xBC, 0x8C, 0x66", [this](int row) {
        append_text(parameter_line(static_cast<std::size_t>(row), document().user_data, LineOf::Selection));
      });
  parameter_value_ = make_hex_edit("Userdata Value", "00", "New value, 2 hex digits");
  parameter_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  grid->addWidget(label_for(parameter_, "Userdata Title"), 0, 0);
  grid->addWidget(parameter_, 0, 1, 1, 2);
  add_field(grid, 1, "Value", parameter_value_);
  grid->addWidget(make_set_button("Set", "Userdata", "Store the value and send its group to keep",
                                  [this] { spawn(set_parameter()); }),
                  1, 2);
  return group;
}

}  // namespace qv5123
