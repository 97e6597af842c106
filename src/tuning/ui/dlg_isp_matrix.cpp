#include "tuning/ui/dlg_isp_matrix.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

#include "base/ui/page_marks.h"
#include "tuning/patch_report.h"
#include "tuning/ui/mark_strip.h"
#include "tuning/ui/matrix_copy_dialog.h"

namespace qv5123 {
namespace {

/// The registers of a row, one for each light source.
std::vector<int> row_registers(const MatrixDesk& desk, int row) {
  std::set<int> addresses;
  for (const FieldInfo& field : desk.model().fields())
    if (field.sent_by == row) addresses.insert(field.address);
  return {addresses.begin(), addresses.end()};
}

/// What is out of range does not become the nearest end: it is refused as it was typed.
class RatioEdit : public NumberEdit {
 public:
  RatioEdit() : NumberEdit(0, 999'999'999) {
    keep_wheel_from(this);
    connect(lineEdit(), &QLineEdit::textChanged, this, &RatioEdit::mark);
    connect(this, &QSpinBox::valueChanged, this, &RatioEdit::mark);
    connect(this, &QSpinBox::editingFinished, this, &RatioEdit::mark);
  }
  void stepBy(int steps) override {
    setValue(std::clamp(value() + steps, kCorrectionRatio.lowest, kCorrectionRatio.highest));
  }

 private:
  void mark() { mark_refused(lineEdit(), !text().isEmpty() && !kCorrectionRatio.holds(text().toInt())); }
};

}  // namespace

CDlgIspMatrix::CDlgIspMatrix(PageHost& host, std::shared_ptr<MeasuringBoard> board)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data, std::move(board)),
      columns_(new QHBoxLayout(this)),
      picker_(make_picker()),
      patches_(new PatchGrid(desk_)),
      fit_(new MatrixFitBox(desk_)) {
  auto* left = new QVBoxLayout;
  left->addWidget(patches_);
  left->addWidget(fit_, 1);
  auto* right = new QVBoxLayout;
  right->setSpacing(3);
  right->addWidget(picker_);
  right->addLayout(make_chart_row());
  right->addWidget(make_light_group());
  right->addWidget(make_calculation_group());
  right->addWidget(make_matrix_group());
  right->addStretch(1);
  right->addWidget(make_file_buttons());
  // Where letters are large every pixel counts.
  columns_->setContentsMargins(3, 6, 3, 6);
  columns_->setSpacing(6);
  columns_->addLayout(left, 1);
  columns_->addLayout(right);
  desk_.attach(*this);
  show_values();
}

QSize CDlgIspMatrix::usual_size() const {
  const QMargins margins = columns_->contentsMargins();
  const QSize left = columns_->itemAt(0)->minimumSize();
  const QSize right = columns_->itemAt(1)->minimumSize();
  return QSize(left.width() + columns_->spacing() + right.width(), std::max(left.height(), right.height()))
      .grownBy(margins);
}

/// As wide as the wider column, whichever way they stand: it is asked before there is the room to unfold.
QSize CDlgIspMatrix::minimumSizeHint() const {
  const QMargins margins = columns_->contentsMargins();
  const int column =
      std::max(columns_->itemAt(0)->minimumSize().width(), columns_->itemAt(1)->minimumSize().width());
  return {column + margins.left() + margins.right(), columns_->minimumSize().height()};
}

void CDlgIspMatrix::resizeEvent(QResizeEvent* event) {
  TuningDialog::resizeEvent(event);
  const bool fits = event->size().width() >= usual_size().width();
  columns_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

PickerBox* CDlgIspMatrix::make_picker() {
  namespace reg = picker_register;
  auto* box = new PickerBox(desk_.picker(),
                            {"GET COLOR",
                             "Measures around the cursor for the chosen patch, ISP " +
                                 registers_text({reg::kRed, reg::kGreen, reg::kBlue}),
                             [this] { desk_.get_color(); }},
                            {reg::kDisplay, reg::kEnable});
  patch_step_ = make_number(0, kPickerMaximumX, "Patch Step",
                            "0..2303 pixels from patch to patch: after GET "
                            "COLOR the cursor goes on to the next; 0 "
                            "leaves it where it is");
  connect(patch_step_, &QSpinBox::valueChanged, this, [this](int step) { desk_.choose_patch_step(step); });
  box->add_setting("Patch Step:", keep_choice(patch_step_));
  return box;
}

QLayout* CDlgIspMatrix::make_chart_row() {
  corner_ =
      make_button("Set corner", {},
                  "Takes the cursor's place for the chosen patch: Dark skin, Bluish green, Black or White",
                  [this] { desk_.set_corner(); });
  all_ = make_button(
      "Measure all 24", {},
      "Measures the whole chart from its four corners, each patch three times; pressed again it stops",
      [this] { desk_.measure_all(); });
  auto* row = new QHBoxLayout;
  row->addWidget(corner_);
  row->addWidget(all_);
  return row;
}

void CDlgIspMatrix::show_run() {
  const auto set =
      std::ranges::count_if(desk_.corners(), [](const auto& place) { return place.has_value(); });
  set_caption(corner_, set == 0 ? QString("Set corner") : QString("Set corner (%1 of 4)").arg(set));
  set_caption(all_, desk_.measuring_all() ? QString("Stop (%1 left)").arg(desk_.patches_left())
                                          : QString("Measure all 24"));
}

QWidget* CDlgIspMatrix::make_file_buttons() {
  return make_file_control({[this] { desk_.load_file(); }, [this] { desk_.start_load(); },
                            [this] { desk_.start_save(host().prompts(), desk_.save(host())); },
                            "Reads all matrices, " + register_text(MatrixPage::kTexts.trigger),
                            save_tip(SavedFile::all_pages), make_unread_note()});
}

QWidget* CDlgIspMatrix::make_light_group() {
  auto* group = new QGroupBox("Light source selection");
  auto* column = new QVBoxLayout(group);
  column->setContentsMargins(6, 2, 6, 4);
  column->addLayout(make_light_row());
  column->addLayout(make_mode_row());
  return group;
}

QLayout* CDlgIspMatrix::make_light_row() {
  auto* row = new QHBoxLayout;
  light_ = new QButtonGroup(this);
  for (int light = 0; light < kLightSources; ++light) {
    const char* name = kLightSourceNames[static_cast<std::size_t>(light)];
    auto* radio = named(new QRadioButton(name), name,
                        QString("Shows this light source's matrix, %1 = %2")
                            .arg(register_text(kLightSourceRegister))
                            .arg(light));
    light_->addButton(radio, light);
    row->addWidget(radio);
  }
  show_choice(light_, desk_.values().light);
  on_choice(light_, [this](int light) { desk_.choose_light(light); });
  return row;
}

QLayout* CDlgIspMatrix::make_mode_row() {
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel("Video Mode:"));
  mode_ = make_combo(items_of(kVideoModeNames), "Video Mode",
                     "Shows this video mode's matrix, " + register_text(kMatrixModeRegister) + " = 0..3",
                     [this](int mode) { desk_.choose_mode(mode); });
  row->addWidget(mode_);
  row->addStretch(1);
  row->addWidget(
      make_button("Copy matrix to...", {},
                  "Gives the shown matrix to other video modes and light sources, here and on the chip",
                  [this] { choose_copies(); }));
  return row;
}

/// By the page's own controls.
void CDlgIspMatrix::choose_value(std::size_t field) {
  for (int mode = 0; mode < kVideoModes; ++mode) {
    for (int light = 0; light < kLightSources; ++light) {
      for (int row = 0; row < kMatrixRows; ++row) {
        const std::size_t first = desk_.field(desk_.values().tables[mode][row][light][0]);
        if (field < first || field >= first + 3) continue;
        light_->button(light)->setChecked(true);
        mode_->setCurrentIndex(mode);
      }
    }
  }
}

void CDlgIspMatrix::choose_copies() {
  auto* dialog = new MatrixCopyDialog({desk_.values().mode, desk_.values().light}, this);
  connect(dialog, &MatrixCopyDialog::chosen, this,
          [this](const std::vector<MatrixPlace>& places) { desk_.copy_matrix(places, host().prompts()); });
  dialog->open();
}

QWidget* CDlgIspMatrix::make_calculation_group() {
  auto* group = new QGroupBox("Auto Calc ( Outdoor Only )");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setVerticalSpacing(2);
  manual_ = keep_choice(make_check("Input Manually", {}, "Lets every patch be typed",
                                   [this](bool on) { desk_.choose_manual_input(on); }));
  grid->addWidget(new QLabel("Correction Ratio"), 0, 0);
  grid->addLayout(make_ratio_row(), 0, 1);
  grid->addWidget(make_button("Calculate", {}, "Fits the matrix to the measured patches",
                              [this] { desk_.calculate(host().prompts()); }),
                  0, 2);
  grid->addWidget(manual_, 1, 0, 1, 2);
  grid->addWidget(
      make_button("Clear", {}, "Empties the patches and the shown matrix", [this] { desk_.clear(); }), 1, 2);
  grid->addWidget(
      make_button("Fit color difference", {},
                  "Fits whole codes for the least mean CIEDE2000, and shows it beside what Calculate "
                  "found; the choice is below the patches",
                  [this] { desk_.fit_color_difference(host()); }),
      2, 0, 1, 3);
  return group;
}

QLayout* CDlgIspMatrix::make_ratio_row() {
  auto* ratio = named(new RatioEdit, "Correction Ratio", "0..100 % of the way from the identity to the fit");
  ratio->setValue(desk_.values().ratio);
  connect(ratio, &QSpinBox::valueChanged, this, [this](int percent) { desk_.type_ratio(percent); });
  auto* row = new QHBoxLayout;
  row->setSpacing(4);
  row->addWidget(ratio);
  row->addWidget(new QLabel("%"));
  return row;
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
  const QString name = kColourNames[row];
  grid->addWidget(new QLabel(name), row, 0);
  for (int column = 0; column < 3; ++column) grid->addWidget(make_code(row, column), row, column + 1);
  grid->addWidget(
      make_set_button(
          "Set", "Row " + name,
          "Sends the row, of " + registers_text(row_registers(desk_, row)) + " the one of the light source",
          [this, row] { desk_.set_row(static_cast<MatrixControl>(row), host().prompts()); }),
      row, 4);
}

QLineEdit* CDlgIspMatrix::make_code(int row, int column) {
  auto* edit = named(new QLineEdit, kMatrixCodeNames[row][column], kMatrixCodeRange);
  edit->setMaxLength(6);
  // Beside its mark.
  edit->setTextMargins(MarkStrip::kWidth, 0, 0, 0);
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance("0x0000") + 16 + MarkStrip::kWidth);
  edit->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  connect(edit, &QLineEdit::textChanged, this, [this, edit, row, column](const QString& text) {
    desk_.type_code(row, column, text.toStdString());
    mark_refused(edit, desk_.code_refused(row, column));
  });
  codes_[row][column] = edit;
  return edit;
}

void CDlgIspMatrix::show_values() {
  show_measurements();
  show_codes();
}

void CDlgIspMatrix::show_measurements() {
  show_run();
  picker_->show_picker();
  show_value(patch_step_, desk_.values().patch_step);
  patches_->show_values();
  show_report();
  show_typing();
}

void CDlgIspMatrix::show_typing() {
  show_checked(manual_, desk_.values().manual_input);
  patches_->show_typing();
}

void CDlgIspMatrix::show_codes() {
  for (int row = 0; row < kMatrixRows; ++row) {
    for (int column = 0; column < 3; ++column) {
      QLineEdit* edit = codes_[row][column];
      const QSignalBlocker quiet(edit);
      edit->setText(QString::fromStdString(desk_.code_text(row, column)));
      mark_refused(edit, false);
    }
  }
  mark_codes();
}

void CDlgIspMatrix::show_marks(const std::vector<ValueMark>& marks) {
  marks_ = marks;
  mark_codes();
}

/// Of the mode and the light source that are shown.
void CDlgIspMatrix::mark_codes() {
  const MatrixValues& values = desk_.values();
  if (marks_.empty() || values.mode < 0 || values.mode >= kVideoModes) return;
  for (int row = 0; row < kMatrixRows; ++row) {
    for (int column = 0; column < 3; ++column)
      MarkStrip::show_mark(codes_[row][column],
                           marks_[desk_.field(values.tables[values.mode][row][values.light][column])]);
  }
}

void CDlgIspMatrix::show_report() {
  fit_->show_report();
}

}  // namespace qv5123
