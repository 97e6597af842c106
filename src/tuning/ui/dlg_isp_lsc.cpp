#include "tuning/ui/dlg_isp_lsc.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

QString flicker_text(int hertz, int mode) {
  return QString("For lamps of %1 Hz, %2 = %3, or %4 when off")
      .arg(hertz)
      .arg(register_text(flicker_mode_write(mode).front().address))
      .arg(mode)
      .arg(kFlickerOff);
}

}  // namespace

CDlgIspLSC::CDlgIspLSC(PageHost& host, std::shared_ptr<MeasuringBoard> board)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data, std::move(board)),
      edits_(desk_, [this] { chart_->refresh(); }),
      picker_(make_picker()),
      chart_(new LensChartView(desk_.calibration(), desk_.values())),
      field_(new LensFieldView) {
  auto* left = new QVBoxLayout;
  left->addWidget(chart_, 3);
  left->addWidget(field_);
  left->addWidget(make_log_row(), 1);
  auto* right = new QVBoxLayout;
  right->addWidget(picker_);
  right->addWidget(make_parameter_group());
  right->addWidget(make_flicker_group());
  right->addStretch(1);
  right->addWidget(
      make_file_control({[this] { desk_.load_file(); }, [this] { desk_.start_load(); },
                         [this] { desk_.start_save(this->host().prompts(), desk_.save(this->host())); },
                         "Reads the parameters, " + register_text(LensPage::kTexts.trigger),
                         save_tip(SavedFile::all_pages), make_unread_note()}));
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  page->addLayout(right);
  desk_.attach(*this);
  show_values();
}

QString CDlgIspLSC::parameter_registers() const {
  const LensValues& values = desk_.values();
  return registers_text({desk_.info(values.parameter1[0]).address, desk_.info(values.parameter2[0]).address});
}

PickerBox* CDlgIspLSC::make_picker() {
  auto* box = new PickerBox(
      desk_.picker(),
      {"CALIBRATION",
       "Sweeps the cursor along a line, fits the parameters and sends them, " + parameter_registers(),
       [this] { desk_.start_calibration(host().prompts()); }},
      {picker_register::kCorrection, picker_register::kDisplay, picker_register::kEnable});
  auto* size = make_combo({"1080P", "720P"}, "Screen Size", "Length of the line: 1920 or 1280 pixels",
                          [this](int index) { desk_.choose_screen(index); });
  box->add_setting("Screen Size:", keep_choice(size));
  connect(box, &PickerBox::switch_changed, this, [this] {
    // The sweep looks at the switch itself, and says what the keys do when it ends.
    if (!desk_.calibrating()) desk_.picker().want_keys(desk_.values().picker_on);
  });
  return box;
}

QWidget* CDlgIspLSC::make_parameter_group() {
  auto* group = new QGroupBox("Parameters");
  auto* column = new QVBoxLayout(group);
  column->addWidget(make_ratio_row());
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(4);
  for (int c = 0; c < 3; ++c) grid->addWidget(new QLabel(kLensColours[c]), 0, c + 1, Qt::AlignCenter);
  add_parameter_row(grid, 1, desk_.values().parameter1, LensControl::parameter1);
  add_parameter_row(grid, 2, desk_.values().parameter2, LensControl::parameter2);
  column->addLayout(grid);
  return group;
}

void CDlgIspLSC::add_parameter_row(QGridLayout* grid, int row, const PerColour& parameter,
                                   LensControl control) {
  const FieldInfo& red = desk_.info(parameter[0]);
  const char* caption = red.caption.words[0];
  grid->addWidget(new QLabel(caption), row, 0);
  for (int c = 0; c < 3; ++c) grid->addWidget(edits_.number(desk_.field(parameter[c])), row, c + 1);
  grid->addWidget(make_set_button("S", caption, "Sends the row, " + register_text(red.address),
                                  [this, control] { desk_.send_row(control); }),
                  row, 4);
}

QWidget* CDlgIspLSC::make_ratio_row() {
  auto* widget = new QWidget;
  auto* row = new QHBoxLayout(widget);
  row->setContentsMargins(0, 0, 0, 0);
  ratio_ = make_number(0, 100, "Correction Ratio", "0..100 % of the measured fall-off");
  connect(ratio_, &QSpinBox::valueChanged, this, [this](int percent) { desk_.move_ratio(percent); });
  auto* label = new QLabel("Correction Ratio");
  label->setBuddy(ratio_);
  row->addWidget(label);
  row->addWidget(ratio_);
  row->addWidget(new QLabel("%"));
  row->addStretch(1);
  row->addWidget(
      make_button("Check field", {},
                  "Measures 9 x 5 places of the picture with the correction that the chip has, and "
                  "switches the picker off; pressed again it stops",
                  [this] { desk_.press_check_field(); }));
  return widget;
}

QWidget* CDlgIspLSC::make_flicker_group() {
  auto* group = new QGroupBox("Flickerless");
  auto* row = new QHBoxLayout(group);
  ntsc_ = make_check("NTSC", {}, flicker_text(60, kFlickerNtsc), [this](bool) { desk_.click_ntsc(); });
  pal_ = make_check("PAL", {}, flicker_text(50, kFlickerPal), [this](bool) { desk_.click_pal(); });
  row->addWidget(ntsc_);
  row->addWidget(pal_);
  row->addStretch(1);
  return group;
}

QWidget* CDlgIspLSC::make_log_row() {
  auto* widget = new QWidget;
  auto* row = new QHBoxLayout(widget);
  row->setContentsMargins(0, 0, 0, 0);
  log_ = make_log("Log", "The readings of the sweep and what was fitted to them");
  row->addWidget(log_, 1);
  row->addWidget(make_button("Clear", {}, "Empties the log",
                             [this] {
                               log_->clear();
                               host().show_status("Log emptied");
                             }),
                 0, Qt::AlignTop);
  return widget;
}

void CDlgIspLSC::show_values() {
  edits_.show();
  show_ratio();
  picker_->show_picker();
  show_checked(ntsc_, desk_.values().flicker == kFlickerNtsc);
  show_checked(pal_, desk_.values().flicker == kFlickerPal);
  chart_->refresh();
}

/// Without being taken for moved by the user.
void CDlgIspLSC::show_ratio() {
  const QSignalBlocker quiet(ratio_);
  ratio_->setValue(desk_.values().ratio);
}

void CDlgIspLSC::show_field() {
  field_->show_field(desk_.picture());
}

void CDlgIspLSC::add_to_log(const std::string& text) {
  log_->moveCursor(QTextCursor::End);
  log_->insertPlainText(QString::fromStdString(text).remove('\r'));
  log_->verticalScrollBar()->setValue(log_->verticalScrollBar()->maximum());
}

}  // namespace qv5123
