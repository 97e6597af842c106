#include "tuning/ui/dlg_isp_matrix.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>

#include "tuning/matrix_fit.h"
#include "tuning/matrix_flow.h"
#include "tuning/patch_report.h"

namespace qv5123 {
namespace {

constexpr std::array<const char*, kMatrixRows> kColours{"R", "G", "B"};
constexpr std::array<const char*, kMatrixLights> kLights{"Outdoor", "Light-1", "Light-2"};
constexpr std::array<const char*, kVideoModes> kModes{"TVI", "AHD", "CVI", "CVBS"};
/// The registers of a row for the three light sources.
constexpr std::array<const char*, kMatrixRows> kRowRegisters{"0x52, 0x55 or 0x58", "0x53, 0x56 or 0x59",
                                                             "0x54, 0x57 or 0x5A"};
constexpr char kCodeRange[] = "0x0000..0x1FFF in 13-bit two's complement, 0x0400 is 1.0";

}  // namespace

CDlgIspMatrix::CDlgIspMatrix(PageHost& host)
    : TuningPage(host),
      picker_desk_(host, {values_.picker_on, values_.picker, values_.step_index,
                          [this](bool on) { return switch_matrix_picker(link(), values_, on); }}),
      picker_(make_picker()),
      patches_(new PatchGrid(values_.measured, values_.patch)),
      swatches_(new PatchSwatchView) {
  auto* left = new QVBoxLayout;
  left->addWidget(patches_);
  left->addWidget(swatches_, 1);
  auto* right = new QVBoxLayout;
  right->setSpacing(3);
  right->addWidget(picker_);
  right->addWidget(make_light_group());
  right->addWidget(make_calculation_group());
  right->addWidget(make_matrix_group());
  right->addStretch(1);
  right->addWidget(make_file_control({[this] { load_file(); }, [this] { load_isp(); },
                                      [this] { save(run_save()); }, "Reads all matrices, register 0x6A",
                                      "Writes the setting file and sends all matrices for the chip to keep, "
                                      "registers 0x52 to 0x5A for each of 0xCA = 0..3"}));
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  page->addLayout(right);
  connect(patches_, &PatchGrid::edited, this, &CDlgIspMatrix::show_report);
  connect(patches_, &PatchGrid::chosen, this, &CDlgIspMatrix::enable_controls);
  reload_from_user_data();
}

PickerBox* CDlgIspMatrix::make_picker() {
  auto* box = new PickerBox(
      picker_desk_,
      {"GET COLOR", "Measures around the cursor for the chosen patch, ISP registers 0xC3D, 0xC3E, 0xC3F",
       [this] { get_color(); }});
  patch_step_ =
      make_number(0, kPickerMaximumX, "Patch Step",
                  "0..2303 pixels from patch to patch: after GET COLOR the cursor goes on to the next; 0 "
                  "leaves it where it is");
  connect(patch_step_, &QSpinBox::valueChanged, this, [this](int step) { values_.patch_step = step; });
  box->add_setting("Patch Step:", patch_step_);
  connect(box, &PickerBox::switch_changed, this, &CDlgIspMatrix::enable_controls);
  connect(box, &PickerBox::chip_settled, this, [this] {
    take_typed_text(this);
    show_measurements();
  });
  return box;
}

QWidget* CDlgIspMatrix::make_light_group() {
  auto* group = new QGroupBox("Light source selection");
  auto* column = new QVBoxLayout(group);
  column->setContentsMargins(6, 2, 6, 4);
  auto* lights = new QHBoxLayout;
  auto* choice = new QButtonGroup(this);
  for (int light = 0; light < kMatrixLights; ++light) {
    auto* radio = named(new QRadioButton(kLights[light]), kLights[light],
                        QString("Shows this light source's matrix, register 0x4E = %1").arg(light));
    radio->setChecked(light == values_.light);
    choice->addButton(radio, light);
    lights->addWidget(radio);
  }
  connect(choice, &QButtonGroup::idClicked, this, [this](int light) {
    values_.light = light;
    show_selected_matrix();
  });
  column->addLayout(lights);
  auto* mode_row = new QHBoxLayout;
  auto* mode = make_combo(items_of(kModes), "Video Mode",
                          "Shows this video mode's matrix, register 0xCA = 0..3", [this](int index) {
                            values_.mode = index;
                            show_selected_matrix();
                          });
  mode_row->addWidget(new QLabel("Video Mode:"));
  mode_row->addWidget(mode);
  mode_row->addStretch(1);
  column->addLayout(mode_row);
  return group;
}

QWidget* CDlgIspMatrix::make_calculation_group() {
  auto* group = new QGroupBox("Auto Calc ( Outdoor Only )");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setVerticalSpacing(2);
  auto* ratio = make_number(0, 100, "Correction Ratio", "0..100 % of the way from the identity to the fit");
  ratio->setValue(values_.ratio);
  connect(ratio, &QSpinBox::valueChanged, this, [this](int percent) { values_.ratio = percent; });
  auto* ratio_row = new QHBoxLayout;
  ratio_row->setSpacing(4);
  ratio_row->addWidget(ratio);
  ratio_row->addWidget(new QLabel("%"));
  manual_ = make_check("Input Manually", {}, "Lets every patch be typed", [this](bool on) {
    values_.manual_input = on;
    enable_controls();
  });
  grid->addWidget(new QLabel("Correction Ratio"), 0, 0);
  grid->addLayout(ratio_row, 0, 1);
  grid->addWidget(
      make_button("Calculate", {}, "Fits the matrix to the measured patches", [this] { calculate(); }), 0, 2);
  grid->addWidget(manual_, 1, 0, 1, 2);
  grid->addWidget(make_button("Clear", {}, "Empties the patches and the shown matrix", [this] { clear(); }),
                  1, 2);
  return group;
}

QWidget* CDlgIspMatrix::make_matrix_group() {
  auto* group = new QGroupBox("Color Correction Matrix");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setVerticalSpacing(2);
  for (int column = 1; column <= 3; ++column) grid->setColumnStretch(column, 1);
  for (int row = 0; row < kMatrixRows; ++row) add_matrix_row(grid, row);
  return group;
}

void CDlgIspMatrix::add_matrix_row(QGridLayout* grid, int row) {
  grid->addWidget(new QLabel(kColours[row]), row, 0);
  for (int column = 0; column < 3; ++column) grid->addWidget(make_code(row, column), row, column + 1);
  const QString name = QString("Row %1").arg(kColours[row]);
  grid->addWidget(make_set_button("Set", name, QString("Sends the row, register ") + kRowRegisters[row],
                                  [this, row] { set_row(row); }),
                  row, 4);
}

QLineEdit* CDlgIspMatrix::make_code(int row, int column) {
  auto* edit = named(new QLineEdit, QString("%1 from %2").arg(kColours[row], kColours[column]), kCodeRange);
  edit->setMaxLength(6);
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance("0x0000") + 16);
  edit->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  connect(edit, &QLineEdit::textEdited, this, [edit](const QString& text) {
    mark_refused(edit, !text.isEmpty() && !matrix_coefficient_of(text.toStdString()));
  });
  codes_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = edit;
  return edit;
}

void CDlgIspMatrix::show_all() {
  show_measurements();
  show_codes();
}

/// Leaves the codes alone: some may have been typed and not been set yet.
void CDlgIspMatrix::show_measurements() {
  picker_->show_picker();
  show_value(patch_step_, values_.patch_step);
  patches_->show_values();
  show_report();
  enable_controls();
}

void CDlgIspMatrix::show_codes() {
  for (std::size_t row = 0; row < kMatrixRows; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      QLineEdit* edit = codes_[row][column];
      edit->setText(QString::fromStdString(matrix_code_text(values_.coefficients[row][column])));
      mark_refused(edit, false);
    }
  }
}

void CDlgIspMatrix::show_report() {
  swatches_->show_report(patch_report(values_.measured, values_.coefficients));
}

void CDlgIspMatrix::enable_controls() {
  using Typing = PatchGrid::Typing;
  show_checked(manual_, values_.manual_input);
  patches_->allow(values_.manual_input ? Typing::all : values_.picker_on ? Typing::chosen : Typing::none);
  // An arrow would move the cursor away from what is being measured.
  picker_desk_.want_keys(values_.picker_on && !measuring_patch_);
}

/// Only what was typed becomes a coefficient: a code holds less of one than the fit computed.
bool CDlgIspMatrix::take_codes() {
  Coefficients taken = values_.coefficients;
  for (std::size_t row = 0; row < kMatrixRows; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const QLineEdit* edit = codes_[row][column];
      const std::string text = edit->text().toStdString();
      // What is no number stands there as a code, and is sent as that.
      const bool shown = text == matrix_code_text(taken[row][column]);
      if (shown && std::isfinite(taken[row][column])) continue;
      const std::optional<float> typed = text.empty() ? 0.0f : matrix_coefficient_of(text);
      if (!typed) {
        host().show_status(edit->accessibleName().toStdString() + " takes " + kCodeRange + ".");
        return false;
      }
      taken[row][column] = *typed;
    }
  }
  values_.coefficients = taken;
  return true;
}

void CDlgIspMatrix::show_selected_matrix() {
  show_matrix(values_);
  show_codes();
  show_report();
}

void CDlgIspMatrix::chosen_again() {
  show_measurements();
}

void CDlgIspMatrix::get_color() {
  take_typed_text(this);
  if (!measuring_.running()) measuring_.start(run_get_color());
}

Task<> CDlgIspMatrix::run_get_color() {
  const std::size_t patch = values_.patch;
  co_await picker_desk_.arrive();
  if (picker_desk_.chip_was_away()) {
    host().show_status("GET COLOR: " + std::string(kPickerChipWasAway));
    co_return;
  }
  measuring_patch_ = true;
  enable_controls();
  const bool measured = co_await get_patch_color(link(), values_, patch);
  measuring_patch_ = false;
  if (!measured) host().show_status("GET COLOR: the chip did not answer.");
  take_typed_text(this);
  show_measurements();
}

void CDlgIspMatrix::calculate() {
  take_typed_text(this);
  const MatrixResult result = calculate_matrix(values_);
  if (result == MatrixResult::no_grey) {
    return spawn(host().prompts().message({"Please get color of gray!"}));
  }
  if (result == MatrixResult::unsolvable) {
    host().show_status("The measured patches do not determine a matrix.");
  }
  show_codes();
  show_report();
}

void CDlgIspMatrix::clear() {
  clear_matrix(values_);
  show_all();
  for (auto& row : codes_) {
    for (QLineEdit* edit : row) edit->clear();
  }
}

void CDlgIspMatrix::set_row(int row) {
  take_typed_text(this);
  if (!take_codes()) return;
  set_matrix_rows(values_);
  show_codes();
  show_report();
  link().send(matrix_send_row(values_, row));
}

void CDlgIspMatrix::load_file() {
  reload_from_user_data();
  host().show_status("Load File ok");
}

void CDlgIspMatrix::load_isp() {
  load({kMatrixLoadTrigger, "ISP Load Fail...", "", [this](std::string_view reply) {
          const auto loaded = decode_matrix_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          show_codes();
          show_report();
          return true;
        }});
}

Task<> CDlgIspMatrix::run_save() {
  host().show_status("CCM Data Saving... Please wait");
  take_typed_text(this);
  PageSave save;
  // Before the file, which may have to be chosen: what is loaded meanwhile belongs neither there nor here.
  save.traffic = matrix_full_save(values_);
  const bool written = co_await host().save_everything();
  // Until the chip's exposure and white balance run again.
  const BusyScope busy(host());
  const bool whole = co_await save_on_chip(host(), std::move(save));
  const std::string trouble = co_await end_capture();
  if (!whole) co_return;
  if (trouble.empty()) host().show_status(kPickerOffStatus);
  host().show_status("Transfered Linear Matrix parameters to ISP. Enable color correction.");
  if (!written) host().show_status(kSavedOnChipOnly);
  if (!trouble.empty()) host().show_status(trouble);
}

/// What went wrong, in words; the picker is then as it was.
Task<std::string> CDlgIspMatrix::end_capture() {
  const bool was_on = values_.picker_on;
  // The picker must not be switched on again before it is off.
  picker_->setEnabled(false);
  values_.picker_on = false;
  show_measurements();
  std::string trouble = co_await switch_matrix_picker(link(), values_, false);
  if (!trouble.empty()) values_.picker_on = was_on;
  picker_->setEnabled(true);
  take_typed_text(this);
  show_measurements();
  co_return trouble;
}

void CDlgIspMatrix::save_to_user_data() {
  qv5123::save_to_user_data(values_, document().user_data);
}

void CDlgIspMatrix::reload_from_user_data() {
  qv5123::reload_from_user_data(values_, document().user_data);
  show_all();
}

}  // namespace qv5123
