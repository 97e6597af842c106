#include "tuning/ui/dlg_isp_awb.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "base/delay.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{50};

constexpr std::array<const char*, 3> kColourNames{"R", "G", "B"};
constexpr std::uint8_t kFirstWordRegister = 0x0D;
// What the chip may report of lines A to D reaches down to 801 - 65536.
constexpr int kLowestLimitedWord = 801 - 0x10000;
constexpr int kLowestWord = -0x8000;
constexpr int kHighestWord = 0x7FFF;
constexpr int kHighestColour = 9999;

std::array<int*, 3> parts_of(PatchColour& colour) {
  return {&colour.r, &colour.g, &colour.b};
}

QString word_tooltip(const AwbRow& row, std::size_t word) {
  const QString range = row.limited ? "-800..800" : "-32768..32767";
  return range + ", 256 is 1.0, " + register_text(static_cast<std::uint8_t>(kFirstWordRegister + word));
}

QString address_text(int address) {
  return QString("0xF%1").arg(QString::number(address, 16).toUpper().rightJustified(3, '0'));
}

QLabel* centred(const QString& text) {
  auto* label = new QLabel(text);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

}  // namespace

CDlgIspAwb::CDlgIspAwb(PageHost& host) : TuningPage(host), chart_(new AwbChartView) {
  auto* commands = new QVBoxLayout;
  commands->addWidget(make_navigation_group());
  commands->addWidget(make_file_group());
  commands->addStretch();
  auto* below = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  left->addWidget(chart_, 1);
  left->addLayout(below);
  below->addWidget(make_line_group());
  below->addLayout(commands);
  below->addStretch();
  page->addWidget(make_patch_group());
  // Saving a page that was opened after the file must not replace what the file said.
  if (document().user_data.loaded()) qv5123::reload_from_user_data(values_, document().user_data);
  show_values();
}

QWidget* CDlgIspAwb::make_line_group() {
  auto* group = new QGroupBox("White Line Threshold");
  auto* grid = new QGridLayout(group);
  grid->setVerticalSpacing(2);
  grid->addWidget(centred("Slope"), 0, 1);
  grid->addWidget(centred("Intercept"), 0, 2);
  for (std::size_t i = 0; i < kAwbRows.size(); ++i) add_line_row(grid, static_cast<int>(i));
  return group;
}

void CDlgIspAwb::add_line_row(QGridLayout* grid, int place) {
  const AwbRow& row = kAwbRows[static_cast<std::size_t>(place)];
  const QString name(QLatin1Char(row.name));
  grid->addWidget(centred(name), place + 1, 0);
  for (std::size_t i = 0; i < row.word_count; ++i) {
    const bool is_slope = row.word_count == 2 && i == 0;
    const std::size_t word = row.first_word + i;
    words_[word] = make_number(row.limited ? kLowestLimitedWord : kLowestWord, kHighestWord,
                               name + (is_slope ? " Slope" : " Intercept"), word_tooltip(row, word));
    connect(words_[word], &QSpinBox::valueChanged, this, &CDlgIspAwb::redraw);
    grid->addWidget(words_[word], place + 1, is_slope ? 1 : 2);
  }
  grid->addWidget(make_set_button("S", name, "Send line " + name, [this, &row] { set_row(row); }), place + 1,
                  3);
}

QPushButton* CDlgIspAwb::make_write_button(const QString& caption, RegisterWrite write) {
  return make_button(caption, {}, register_text(write.address) + " = " + QString::number(write.value),
                     [this, write] { link().send(Batch{write}); });
}

QWidget* CDlgIspAwb::make_navigation_group() {
  auto* group = new QGroupBox("Navigation Key");
  auto* grid = new QGridLayout(group);
  grid->addWidget(make_write_button("UP", kAwbUp), 0, 1);
  grid->addWidget(make_write_button("LEFT", kAwbLeft), 1, 0);
  grid->addWidget(
      make_button("GET COLOR", {},
                  "Measure the colour under the cursor for the selected patch, ISP registers "
                  "0xFC92, 0xFC96, 0xFC9A",
                  [this] {
                    if (!color_.running())
                      color_.start(get_color(static_cast<std::size_t>(patch_choice_->checkedId())));
                  }),
      1, 1);
  grid->addWidget(make_write_button("RIGHT", kAwbRight), 1, 2);
  grid->addWidget(make_write_button("DOWN", kAwbDown), 2, 1);
  grid->addWidget(make_write_button("None", kAwbMarkNone), 3, 0);
  grid->addWidget(make_write_button("Set", kAwbMarkSet), 3, 1);
  grid->addWidget(make_write_button("Check", kAwbMarkCheck), 3, 2);
  return group;
}

QWidget* CDlgIspAwb::make_file_group() {
  return make_file_control({[this] { load_from_file(); }, [this] { load_from_isp(); },
                            [this] { save(run_save()); }, "Reads the lines, " + register_text(kAwbQuery),
                            "Sends all lines for the chip to keep, registers 0x0D..0x16"});
}

QWidget* CDlgIspAwb::make_patch_group() {
  auto* group = new QGroupBox("Color Patch");
  auto* grid = new QGridLayout(group);
  grid->setVerticalSpacing(1);
  grid->setHorizontalSpacing(4);
  patch_choice_ = new QButtonGroup(this);
  for (std::size_t part = 0; part < 3; ++part)
    grid->addWidget(centred(kColourNames[part]), 0, static_cast<int>(part) + 1);
  for (std::size_t row = 0; row < kAwbPatchCount; ++row) add_patch_row(grid, row);
  grid->setRowStretch(static_cast<int>(kAwbPatchCount) + 1, 1);
  patch_choice_->button(0)->setChecked(true);
  return group;
}

void CDlgIspAwb::add_patch_row(QGridLayout* grid, std::size_t row) {
  const int line = static_cast<int>(row) + 1;
  const QString caption = kAwbPatches[row].caption;
  auto* choice = named(new QRadioButton(caption), caption, "GET COLOR fills this patch");
  patch_choice_->addButton(choice, static_cast<int>(row));
  grid->addWidget(choice, line, 0);
  for (std::size_t part = 0; part < 3; ++part) {
    auto* edit =
        make_number(0, kHighestColour, caption + " " + kColourNames[part], "0..255, drawn as 255 above");
    edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
    edit->setAlignment(Qt::AlignRight);
    connect(edit, &QSpinBox::valueChanged, this, &CDlgIspAwb::redraw);
    patches_[row][part] = edit;
    grid->addWidget(edit, line, static_cast<int>(part) + 1);
  }
  grid->addWidget(make_set_button("S", caption, "Draw the patch", [this] { redraw(); }), line, 4);
}

AwbValues CDlgIspAwb::shown_values() const {
  AwbValues values = values_;
  for (std::size_t i = 0; i < kAwbWordCount; ++i) values.words[i] = words_[i]->value();
  for (std::size_t row = 0; row < kAwbPatchCount; ++row) {
    const auto parts = parts_of(values.patches[row]);
    for (std::size_t part = 0; part < 3; ++part) *parts[part] = patches_[row][part]->value();
  }
  return values;
}

void CDlgIspAwb::read_controls() {
  for (QSpinBox* box : words_) box->interpretText();
  for (const auto& patch : patches_) {
    for (QSpinBox* box : patch) box->interpretText();
  }
  values_ = shown_values();
}

void CDlgIspAwb::show_values() {
  for (std::size_t i = 0; i < kAwbWordCount; ++i) show_value(words_[i], values_.words[i]);
  for (std::size_t row = 0; row < kAwbPatchCount; ++row) {
    const auto parts = parts_of(values_.patches[row]);
    for (std::size_t part = 0; part < 3; ++part) show_value(patches_[row][part], *parts[part]);
  }
  chart_->show_values(values_);
}

void CDlgIspAwb::redraw() {
  read_controls();
  chart_->show_values(values_);
}

void CDlgIspAwb::set_row(const AwbRow& row) {
  read_controls();
  limit_awb_row(values_, row);
  show_values();
  link().send(awb_row_traffic(values_, row));
}

void CDlgIspAwb::load_from_file() {
  reload_from_user_data();
  host().show_status("Load File Ok.");
}

void CDlgIspAwb::load_from_isp() {
  load({kAwbQuery, "AWB Data Load Fail...", "Load Isp Ok.", [this](std::string_view reply) {
          read_controls();
          const auto loaded = decode_awb_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          show_values();
          return true;
        }});
}

Task<> CDlgIspAwb::run_save() {
  host().show_status("AWB Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  read_controls();
  PageSave save;
  save.traffic = awb_save_traffic(values_);
  save.done = "AWB Data Save Done.";
  co_await save_on_chip(host(), std::move(save));
}

/// The patch changes only when the chip answered for all three colours.
Task<> CDlgIspAwb::get_color(std::size_t patch) {
  std::array<int, 3> colour{};
  for (std::size_t part = 0; part < colour.size(); ++part)
    colour[part] = co_await link().wide_read(kAwbColourRegisters[part]);
  const auto missing = std::find(colour.begin(), colour.end(), -1);
  if (missing != colour.end()) {
    const int address = kAwbColourRegisters[static_cast<std::size_t>(missing - colour.begin())];
    host().show_status("GET COLOR: no answer from " + address_text(address).toStdString());
    co_return;
  }
  for (std::size_t part = 0; part < colour.size(); ++part) show_value(patches_[patch][part], colour[part]);
  redraw();
}

void CDlgIspAwb::save_to_user_data() {
  read_controls();
  qv5123::save_to_user_data(values_, document().user_data);
}

void CDlgIspAwb::put_values(UserDataImage& image) const {
  qv5123::save_to_user_data(shown_values(), image);
}

void CDlgIspAwb::reload_from_user_data() {
  qv5123::reload_from_user_data(values_, document().user_data);
  show_values();
}

}  // namespace qv5123
