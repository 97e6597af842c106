#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>

#include "tuning/ui/dlg_ae_tune.h"

/// How the page is put together.
namespace qv5123 {
namespace {

/// The value whose row is behind "More": what the chip makes of it is not known.
constexpr std::size_t kFurtherAe = 5;

QGridLayout* row_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setVerticalSpacing(3);
  grid->setColumnStretch(1, 1);
  return grid;
}

}  // namespace

CDlgAeTune::CDlgAeTune(PageHost& host) : TuningPage(host) {
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  auto* above = new QHBoxLayout;
  auto* below = new QHBoxLayout;
  page->addLayout(above);
  above->addWidget(make_exposure_group(), 1);
  above->addWidget(make_colour_group(), 1);
  page->addWidget(make_step_group());
  page->addLayout(below);
  below->addWidget(make_orientation_group());
  below->addWidget(make_decision_group(), 1);
  below->addWidget(make_smart_ir_group());
  below->addWidget(make_file_group());
  QWidget* more_area = make_more_area();
  page->addWidget(make_check("More", {}, "Show the AE value of register 0x3C and the messages",
                             [more_area](bool checked) { more_area->setVisible(checked); }));
  page->addWidget(more_area);
  page->addStretch(1);
  // Saving a page that was opened after the file must not replace what the file said.
  if (document().user_data.loaded()) qv5123::reload_from_user_data(values_, document().user_data);
  show_values();
}

QWidget* CDlgAeTune::make_exposure_group() {
  auto* group = new QGroupBox("AE Control");
  QGridLayout* grid = row_grid(group);
  for (std::size_t i = 0; i < kFurtherAe; ++i) {
    const DynamicNumber& number = kDynamicNumbers[i];
    numbers_[i] = add_slider_row(
        grid, static_cast<int>(i), number.caption, number.range.lowest, number.range.highest,
        range_text(number.range.lowest, number.range.highest, number.address), [this, i] { set_number(i); },
        [this, &number](int value) { values_.*number.value = value; });
  }
  grid->setRowStretch(grid->rowCount(), 1);
  return group;
}

QWidget* CDlgAeTune::make_colour_group() {
  auto* group = new QGroupBox("Color Situation");
  QGridLayout* grid = row_grid(group);
  grid->addLayout(make_source_choice(), 0, 0, 1, 4);
  add_source_sum_row(grid, 1);
  add_colour_rows(grid, 2);
  return group;
}

QLayout* CDlgAeTune::make_source_choice() {
  auto* row = new QHBoxLayout;
  source_choice_ = new QButtonGroup(this);
  for (std::size_t i = 0; i < kLightSources; ++i) {
    auto* choice = named(new QRadioButton(kLightSourceNames[i]), kLightSourceNames[i],
                         "Edit the values of this light source, " + register_text(0x4E));
    source_choice_->addButton(choice, static_cast<int>(i));
    row->addWidget(choice);
  }
  row->addStretch();
  source_choice_->button(0)->setChecked(true);
  connect(source_choice_, &QButtonGroup::idClicked, this, [this] { show_source(); });
  return row;
}

void CDlgAeTune::add_source_sum_row(QGridLayout* grid, int row) {
  const QString registers = "registers 0x4F, 0x50, 0x51 for kind 0, 1, 2";
  sum_bar_ = named(new QSlider(Qt::Horizontal), "Light source Sum bar",
                   "-250..250, below 0 kind 0, above 0 kind 1 or 2, " + registers);
  sum_bar_->setRange(kLightSourceRange.lowest, kLightSourceRange.highest);
  keep_wheel_from(sum_bar_);
  sum_kind_ = make_number(0, kHighestLightSourceKind, "Light source kind", "Kind 0..2, " + registers);
  sum_value_ = make_number(0, 255, "Light source value", "Value 0..255, " + registers);
  connect(sum_bar_, &QSlider::valueChanged, this, [this](int bar) {
    LightSource& record = values_.light_sources[source()];
    record = light_source_from_bar(bar, record);
    show_light_source();
  });
  connect(sum_kind_, &QSpinBox::valueChanged, this, [this](int kind) {
    values_.light_sources[source()].kind = std::min(kind, kHighestLightSourceKind);
    show_light_source();
  });
  connect(sum_value_, &QSpinBox::valueChanged, this, [this](int value) {
    values_.light_sources[source()].value = value;
    show_light_source();
  });
  auto* edits = new QHBoxLayout;
  edits->setSpacing(3);
  edits->addWidget(sum_bar_, 1);
  edits->addWidget(new QLabel(">"));
  edits->addWidget(sum_kind_);
  edits->addWidget(new QLabel("by"));
  grid->addWidget(new QLabel("Light source Sum :"), row, 0);
  grid->addLayout(edits, row, 1);
  grid->addWidget(sum_value_, row, 2);
  grid->addWidget(make_set_button("Set", "Light source Sum", registers,
                                  [this] {
                                    take_typed_text(this);
                                    link().send(light_source_traffic(values_, source()));
                                  }),
                  row, 3);
}

void CDlgAeTune::add_colour_rows(QGridLayout* grid, int row) {
  saturation_ = add_slider_row(
      grid, row, "Saturation", kSaturationRange.lowest, kSaturationRange.highest,
      range_text(kSaturationRange.lowest, kSaturationRange.highest, 0x5B),
      [this] {
        take_typed_text(this);
        link().send(saturation_traffic(values_, source()));
      },
      [this](int value) { values_.saturation[source()] = value; });
  const QString weight_tip = "-50..50, register 0x2F, 0x30 or 0x31 by light source";
  r_weight_ = add_slider_row(grid, row + 1, "AWB R Weight", kWeightRange.lowest, kWeightRange.highest,
                             weight_tip, {}, [this](int value) { values_.weights[source()].r = value; });
  b_weight_ = add_slider_row(grid, row + 2, "AWB B Weight", kWeightRange.lowest, kWeightRange.highest,
                             weight_tip, {}, [this](int value) { values_.weights[source()].b = value; });
  grid->addWidget(make_set_button("Set", "AWB Weight", weight_tip, [this] { set_weights(); }), row + 1, 3, 2,
                  1);
  hue_ = add_slider_row(
      grid, row + 3, "Angle", kHueRange.lowest, kHueRange.highest,
      "Hue of all light sources in degrees, " + range_text(kHueRange.lowest, kHueRange.highest, 0x60),
      [this] {
        take_typed_text(this);
        link().send(hue_write(values_));
      },
      [this](int value) { values_.hue_angle = value; });
}

QWidget* CDlgAeTune::make_step_group() {
  auto* group = new QGroupBox("Image Tune by ISO_step");
  auto* column = new QVBoxLayout(group);
  auto* choice = new QHBoxLayout;
  ir_led_ = make_check("Case of IR-LED", {}, "Edit the bank of the IR-LED", [this](bool checked) {
    values_.ir_led = checked;
    if (!checked) video_mode_->setEnabled(true);
    show_bank();
  });
  video_mode_ = make_combo(items_of(kVideoModeNames), "Video Mode", "Edit the bank of this video mode",
                           [this](int index) {
                             values_.video_mode = index;
                             show_bank();
                           });
  choice->addWidget(ir_led_);
  choice->addSpacing(20);
  auto* caption = new QLabel("Video Mode:");
  caption->setBuddy(video_mode_);
  choice->addWidget(caption);
  choice->addWidget(video_mode_);
  choice->addStretch();
  grid_ = new StepGridView([this](std::size_t row) { set_step_row(row); });
  column->addLayout(choice);
  column->addWidget(grid_);
  return group;
}

QWidget* CDlgAeTune::make_orientation_group() {
  auto* group = new QGroupBox("Mirror/Flip");
  auto* row = new QHBoxLayout(group);
  const QString tip = "Bit 0 mirrors, bit 1 flips, " + register_text(0x5F);
  const auto changed = [this] { change_orientation(mirror_->isChecked(), flip_->isChecked()); };
  mirror_ = make_check("MIRROR", {}, tip, [changed](bool) { changed(); });
  flip_ = make_check("FLIP", {}, tip, [changed](bool) { changed(); });
  none_ = make_check("None", {}, tip, [this](bool) { change_orientation(false, false); });
  for (QCheckBox* box : {mirror_, flip_, none_}) row->addWidget(box);
  return group;
}

QWidget* CDlgAeTune::make_decision_group() {
  auto* group = new QGroupBox("DPC");
  dpc_ = add_slider_row(
      row_grid(group), 0, "Decision Value", kDpcRange.lowest, kDpcRange.highest,
      range_text(kDpcRange.lowest, kDpcRange.highest, 0x8C),
      [this] {
        take_typed_text(this);
        link().send(dpc_write(values_, document().user_data));
      },
      [this](int value) { values_.dpc_decision = value; });
  return group;
}

QWidget* CDlgAeTune::make_smart_ir_group() {
  auto* group = new QGroupBox("Smart IR");
  auto* row = new QHBoxLayout(group);
  smart_ir_ = make_combo({"0", "1", "2", "3"}, "Smart IR", range_text(0, 3, 0x67), [this](int index) {
    values_.smart_ir = index;
    link().send(smart_ir_write(values_));
  });
  row->addWidget(smart_ir_);
  return group;
}

QWidget* CDlgAeTune::make_file_group() {
  return make_file_control({[this] { load_from_file(); }, [this] { load_from_isp(); },
                            [this] { save(run_save()); }, "Reads all values, " + register_text(kDynamicQuery),
                            "Sends all values for the chip to keep in its flash"});
}

QWidget* CDlgAeTune::make_more_area() {
  const DynamicNumber& number = kDynamicNumbers[kFurtherAe];
  auto* area = new QWidget;
  QGridLayout* grid = row_grid(area);
  grid->setContentsMargins(0, 0, 0, 0);
  numbers_[kFurtherAe] = add_slider_row(
      grid, 0, number.caption, number.range.lowest, number.range.highest,
      range_text(number.range.lowest, number.range.highest, number.address),
      [this] { set_number(kFurtherAe); }, [this, &number](int value) { values_.*number.value = value; });
  message_edit_ = make_log("Messages", "What was corrected in the ISO steps");
  message_edit_->setFixedHeight(3 * message_edit_->fontMetrics().lineSpacing());
  grid->addWidget(message_edit_, 1, 0, 1, 3);
  grid->addWidget(make_button("Clear", {}, "Empty the messages", [this] { message_edit_->clear(); }), 1, 3);
  area->hide();
  return area;
}

}  // namespace qv5123
