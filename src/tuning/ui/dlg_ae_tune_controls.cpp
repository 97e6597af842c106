#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <utility>

#include "base/ui/page_marks.h"
#include "tuning/ui/dlg_ae_tune.h"

/// How the page is put together.
namespace qv5123 {
namespace {

/// The number whose row is behind "More": what the chip makes of it is not known.
constexpr std::size_t kFurtherAe = 5;

QGridLayout* row_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setContentsMargins(6, 5, 6, 6);
  grid->setVerticalSpacing(3);
  grid->setColumnStretch(1, 1);
  return grid;
}

QString kind_registers() {
  QStringList texts;
  for (int kind = 0; kind < kLightSourceKinds; ++kind)
    texts << register_text(dynamic_register::kFirstKind + kind) + QString(" for kind %1").arg(kind);
  return texts.join(", ");
}

/// For values that there are once.
std::size_t only_one() {
  return 0;
}

}  // namespace

CDlgAeTune::CDlgAeTune(PageHost& host)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data),
      edits_(desk_, [this] { show_light_source_bar(); }) {
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins(4, 6, 4, 6);
  auto* above = new QHBoxLayout;
  auto* below = new QHBoxLayout;
  page->addLayout(above);
  above->addWidget(make_exposure_group(), 1);
  above->addWidget(make_colour_group(), 1);
  page->addWidget(make_step_group());
  page->addLayout(below);
  below->setSpacing(2);
  below->addWidget(make_orientation_group());
  below->addWidget(make_decision_group(), 1);
  below->addWidget(make_smart_ir_group());
  below->addWidget(make_file_group());
  QWidget* more_area = make_more_area();
  page->addWidget(mark_unfolds(keep_choice(
      make_check("More", {},
                 "Show the AE value of " + register_text(desk_.info(desk_.values().further_ae).address) +
                     " and the messages",
                 [more_area](bool checked) { more_area->setVisible(checked); }))));
  page->addWidget(more_area);
  page->addStretch(1);
  desk_.attach(*this);
  show_values();
}

std::function<void()> CDlgAeTune::setting(DynamicControl control, std::function<std::size_t()> index) {
  return [this, control, index = std::move(index)] { desk_.set(control, index(), host().prompts()); };
}

std::function<void()> CDlgAeTune::setting_of_source(DynamicControl control) {
  return setting(control, [this] { return desk_.source(); });
}

template <class Value>
FieldEdits::FieldOf CDlgAeTune::of_source(Value value) {
  return [this, value] { return std::optional(desk_.field(value(desk_.values(), desk_.source()))); };
}

void CDlgAeTune::add_number_row(QGridLayout* grid, std::size_t number) {
  const std::size_t field = desk_.field(desk_.values().*kDynamicNumbers[number]);
  edits_.slider(
      grid, grid->rowCount(), [field] { return std::optional(field); },
      setting(DynamicControl::first_number, [number] { return number; }));
}

QWidget* CDlgAeTune::make_exposure_group() {
  auto* group = new QGroupBox("AE Control");
  QGridLayout* grid = row_grid(group);
  for (std::size_t number = 0; number < kFurtherAe; ++number) add_number_row(grid, number);
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
                         "Edit the values of this light source, " + register_text(kLightSourceRegister) +
                             " = " + QString::number(i));
    source_choice_->addButton(choice, static_cast<int>(i));
    row->addWidget(choice);
  }
  row->addStretch();
  on_choice(source_choice_, [this](int source) { desk_.choose_source(static_cast<std::size_t>(source)); });
  return row;
}

void CDlgAeTune::add_source_sum_row(QGridLayout* grid, int row) {
  QSpinBox* kind =
      edits_.number(of_source([](auto& v, std::size_t i) -> auto& { return v.light_sources[i].kind; }));
  QSpinBox* value =
      edits_.number(of_source([](auto& v, std::size_t i) -> auto& { return v.light_sources[i].value; }));
  sum_bar_ = named(new QSlider(Qt::Horizontal), "Light source Sum bar",
                   "-250..250, below 0 kind 0, above 0 kind 1 or 2, " + kind_registers());
  sum_bar_->setRange(kLightSourceRange.lowest, kLightSourceRange.highest);
  keep_wheel_from(sum_bar_);
  connect(sum_bar_, &QSlider::valueChanged, this, [this](int bar) { desk_.move_light_source_bar(bar); });
  auto* parts = new QHBoxLayout;
  parts->setSpacing(3);
  parts->addWidget(sum_bar_, 1);
  parts->addWidget(new QLabel(">"));
  parts->addWidget(kind);
  parts->addWidget(new QLabel("by"));
  grid->addWidget(new QLabel("Light source Sum :"), row, 0);
  grid->addLayout(parts, row, 1);
  grid->addWidget(value, row, 2);
  grid->addWidget(make_set_button("Set", "Light source Sum", "Sends the value, " + kind_registers(),
                                  setting_of_source(DynamicControl::light_source)),
                  row, 3);
}

void CDlgAeTune::add_colour_rows(QGridLayout* grid, int row) {
  const auto saturation = [](auto& v, std::size_t i) -> auto& {
    return v.saturation[i];
  };
  const auto r_weight = [](auto& v, std::size_t i) -> auto& {
    return v.weights[i].r;
  };
  const auto b_weight = [](auto& v, std::size_t i) -> auto& {
    return v.weights[i].b;
  };
  edits_.slider(grid, row, of_source(saturation), setting_of_source(DynamicControl::saturation));
  edits_.slider(grid, row + 1, of_source(r_weight));
  edits_.slider(grid, row + 2, of_source(b_weight));
  grid->addWidget(make_set_button("Set", "AWB Weight", "Sends both weights of the light source",
                                  setting_of_source(DynamicControl::weights)),
                  row + 1, 3, 2, 1);
  const std::size_t hue = desk_.field(desk_.values().hue_angle);
  edits_.slider(
      grid, row + 3, [hue] { return std::optional(hue); }, setting(DynamicControl::hue_angle, only_one));
}

QWidget* CDlgAeTune::make_step_group() {
  auto* group = new QGroupBox("Image Tune by ISO_step");
  auto* column = new QVBoxLayout(group);
  const auto set_row = [this](std::size_t row) {
    if (const auto bank = desk_.bank())
      desk_.set(DynamicControl::step_row, kStepRows * static_cast<std::size_t>(*bank) + row,
                host().prompts());
  };
  grid_ = new StepGridView(desk_, edits_, set_row);
  column->addLayout(make_bank_choice());
  column->addWidget(grid_);
  return group;
}

QLayout* CDlgAeTune::make_bank_choice() {
  auto* choice = new QHBoxLayout;
  ir_led_ = make_check("Case of IR-LED", {}, "Edit the bank of the IR-LED",
                       [this](bool checked) { desk_.switch_ir_led(checked); });
  video_mode_ =
      make_combo(items_of(desk_.info(desk_.values().video_mode).items), "Video Mode",
                 "Edit the bank of this video mode", [this](int index) { desk_.choose_video_mode(index); });
  choice->addWidget(ir_led_);
  choice->addSpacing(20);
  auto* caption = new QLabel("Video Mode:");
  caption->setBuddy(video_mode_);
  choice->addWidget(caption);
  choice->addWidget(video_mode_);
  choice->addStretch();
  return choice;
}

QWidget* CDlgAeTune::make_orientation_group() {
  auto* group = new QGroupBox("Mirror/Flip");
  auto* row = new QHBoxLayout(group);
  row->setContentsMargins(5, 5, 5, 6);
  row->setSpacing(4);
  const QString tip =
      "Bit 0 mirrors, bit 1 flips, " + register_text(desk_.info(desk_.values().orientation).address);
  mirror_ = make_check("MIRROR", {}, tip, [this](bool on) { desk_.set_mirror(on, host()); });
  flip_ = make_check("FLIP", {}, tip, [this](bool on) { desk_.set_flip(on, host()); });
  none_ = make_check("None", {}, tip, [this](bool) { desk_.turn_nothing(host()); });
  for (QCheckBox* box : {mirror_, flip_, none_}) row->addWidget(box);
  return group;
}

QWidget* CDlgAeTune::make_decision_group() {
  auto* group = new QGroupBox("DPC");
  const std::size_t decision = desk_.field(desk_.values().dpc_decision);
  edits_.slider(
      row_grid(group), 0, [decision] { return std::optional(decision); },
      setting(DynamicControl::dpc_decision, only_one));
  return group;
}

QWidget* CDlgAeTune::make_smart_ir_group() {
  auto* group = new QGroupBox("Smart IR");
  auto* row = new QHBoxLayout(group);
  row->setContentsMargins(6, 5, 6, 6);
  row->addWidget(
      edits_.list(desk_.field(desk_.values().smart_ir), setting(DynamicControl::smart_ir, only_one)));
  return group;
}

QWidget* CDlgAeTune::make_file_group() {
  return make_file_control({[this] { desk_.load_file(); }, [this] { desk_.start_load(); },
                            [this] { desk_.start_save(host().prompts(), desk_.save(host().prompts())); },
                            "Reads all values, " + register_text(DynamicPage::kTexts.trigger),
                            save_tip(SavedFile::none), make_unread_note()});
}

QWidget* CDlgAeTune::make_more_area() {
  auto* area = new QWidget;
  QGridLayout* grid = row_grid(area);
  grid->setContentsMargins(0, 0, 0, 0);
  add_number_row(grid, kFurtherAe);
  message_edit_ = make_log("Messages", "What was corrected in the ISO steps");
  message_edit_->setFixedHeight(3 * message_edit_->fontMetrics().lineSpacing());
  const int row = grid->rowCount();
  grid->addWidget(message_edit_, row, 0, 1, 3);
  grid->addWidget(make_button("Clear", {}, "Empty the messages",
                              [this] {
                                message_edit_->clear();
                                host().show_status("Messages emptied");
                              }),
                  row, 3);
  area->hide();
  return area;
}

}  // namespace qv5123
