#include "tuning/ui/dlg_isp_lsc.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace qv5123 {
namespace {

constexpr std::array<const char*, 3> kColours{"RED", "GREEN", "BLUE"};
constexpr std::uint8_t kParameter1 = 0x64;
constexpr std::uint8_t kParameter2 = 0x65;

}  // namespace

CDlgIspLSC::CDlgIspLSC(PageHost& host)
    : TuningPage(host), picker_(make_picker()), chart_(new LensChartView(calibration_, values_)) {
  auto* left = new QVBoxLayout;
  left->addWidget(chart_, 3);
  left->addWidget(make_log_row(), 1);
  auto* right = new QVBoxLayout;
  right->addWidget(picker_);
  right->addWidget(make_parameter_group());
  right->addWidget(make_flicker_group());
  right->addStretch(1);
  right->addWidget(make_file_control({[this] { load_file(); }, [this] { load_isp(); },
                                      [this] { save(run_save()); }, "Reads the parameters, register 0x6B",
                                      "Sends the parameters for the chip to keep, registers 0x64 and 0x65"}));
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  page->addLayout(right);
  reload_from_user_data();
}

PickerBox* CDlgIspLSC::make_picker() {
  auto* box = new PickerBox(
      host(),
      {values_.picker_on, values_.picker, values_.step_index,
       [this](bool on) { return switch_lens_picker(link(), values_, on); }},
      {"CALIBRATION",
       "Sweeps the cursor along a line, fits the parameters and sends them, registers 0x64 and 0x65",
       [this] { start_calibration(); }});
  auto* size = make_combo({"1080P", "720P"}, "Screen Size", "Length of the line: 1920 or 1280 pixels",
                          [this](int index) { values_.screen_index = index; });
  box->add_setting("Screen Size:", size);
  connect(box, &PickerBox::switched, this, [this] {
    // The sweep looks at the switch itself, and says what the keys do when it ends.
    if (!calibrating_.running()) picker_->enable_keys(values_.picker_on);
  });
  return box;
}

QWidget* CDlgIspLSC::make_parameter_group() {
  auto* group = new QGroupBox("Parameters");
  auto* column = new QVBoxLayout(group);
  column->addWidget(make_ratio_row());
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(4);
  for (int c = 0; c < 3; ++c) grid->addWidget(new QLabel(kColours[c]), 0, c + 1, Qt::AlignCenter);
  add_parameter_row(grid, 1, "Parameter-1", values_.parameter1, kParameter1, parameter1_,
                    [this] { link().send(lens_send_parameter1(values_)); });
  add_parameter_row(grid, 2, "Parameter-2", values_.parameter2, kParameter2, parameter2_,
                    [this] { link().send(lens_send_parameter2(values_)); });
  column->addLayout(grid);
  return group;
}

void CDlgIspLSC::add_parameter_row(QGridLayout* grid, int row, const QString& caption, PerColour& parameter,
                                   std::uint8_t address, std::array<QSpinBox*, 3>& edits,
                                   std::function<void()> send) {
  grid->addWidget(new QLabel(caption), row, 0);
  for (int c = 0; c < 3; ++c) {
    auto* edit = make_number(0, kLensParameterMaximum, caption + " " + kColours[c],
                             range_text(0, kLensParameterMaximum, address) + ", 1024 is 1.0");
    connect(edit, &QSpinBox::valueChanged, this, [this, &value = parameter[c]](int typed) {
      value = typed;
      chart_->refresh();
    });
    edits[c] = edit;
    grid->addWidget(edit, row, c + 1);
  }
  grid->addWidget(make_set_button("S", caption, "Sends the row, " + register_text(address),
                                  [this, send = std::move(send)] {
                                    take_typed_text(this);
                                    send();
                                  }),
                  row, 4);
}

QWidget* CDlgIspLSC::make_ratio_row() {
  auto* widget = new QWidget;
  auto* row = new QHBoxLayout(widget);
  row->setContentsMargins(0, 0, 0, 0);
  auto* ratio = make_number(0, 100, "Correction Ratio", "0..100 % of the measured fall-off");
  ratio->setValue(values_.ratio);
  connect(ratio, &QSpinBox::valueChanged, this, &CDlgIspLSC::ratio_moved);
  auto* label = new QLabel("Correction Ratio");
  label->setBuddy(ratio);
  row->addWidget(label);
  row->addWidget(ratio);
  row->addWidget(new QLabel("%"));
  row->addStretch(1);
  return widget;
}

QWidget* CDlgIspLSC::make_flicker_group() {
  auto* group = new QGroupBox("Flickerless");
  auto* row = new QHBoxLayout(group);
  ntsc_ = make_check("NTSC", {}, "For lamps of 60 Hz, register 0xBD = 2, or 0 when off",
                     [this](bool) { set_flicker(flicker_after_ntsc(values_.flicker)); });
  pal_ = make_check("PAL", {}, "For lamps of 50 Hz, register 0xBD = 1, or 0 when off",
                    [this](bool) { set_flicker(flicker_after_pal(values_.flicker)); });
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
  row->addWidget(make_button("Clear", {}, "Empties the log", [this] { log_->clear(); }), 0, Qt::AlignTop);
  return widget;
}

void CDlgIspLSC::show_parameters() {
  for (std::size_t c = 0; c < 3; ++c) {
    show_value(parameter1_[c], values_.parameter1[c]);
    show_value(parameter2_[c], values_.parameter2[c]);
  }
  chart_->refresh();
}

void CDlgIspLSC::show_flicker() {
  show_checked(ntsc_, values_.flicker == kFlickerNtsc);
  show_checked(pal_, values_.flicker == kFlickerPal);
}

void CDlgIspLSC::add_to_log(const std::string& text) {
  log_->moveCursor(QTextCursor::End);
  log_->insertPlainText(QString::fromStdString(text).remove('\r'));
  log_->verticalScrollBar()->setValue(log_->verticalScrollBar()->maximum());
}

void CDlgIspLSC::ratio_moved(int ratio) {
  values_.ratio = ratio;
  // A sweep under way takes the ratio when it gets there.
  if (!values_.calibrated || calibrating_.running()) return;
  log_->clear();
  if (calibration_.samples.empty()) return;
  add_to_log(recompute_lens(calibration_, values_));
  show_parameters();
  link().send(lens_send_parameters(values_));
}

void CDlgIspLSC::set_flicker(int mode) {
  values_.flicker = mode;
  show_flicker();
  link().send(flicker_mode_write(mode));
}

void CDlgIspLSC::start_calibration() {
  take_typed_text(this);
  if (!calibrating_.running()) calibrating_.start(calibrate());
}

Task<> CDlgIspLSC::calibrate() {
  // A line that was typed in last is the one to measure along.
  co_await picker_->arrive();
  if (picker_->chip_was_away()) {
    spawn(host().prompts().message({"Calibration stopped: " + std::string(kPickerChipWasAway)}));
    co_return;
  }
  log_->clear();
  picker_->enable_keys(false);
  calibration_ = {};
  calibration_.width = lens_line_width(values_.screen_index);
  chart_->refresh();
  host().show_status("Calibrating. Switch the color picker off to stop.");
  const std::size_t positions = lens_positions(calibration_.width).size();
  std::function<void(const LensSample&)> on_sample = [this, positions](const LensSample& sample) {
    take_sample(sample, positions);
  };
  LensCalibrationResult result;
  {
    const BusyScope busy(host());
    result = co_await calibrate_lens(link(), values_, std::move(on_sample));
  }
  Message complaint{result.message};
  finish(std::move(result));
  // Beside this flow, which is over: the ratio may move while the box is open.
  if (!complaint.text.empty()) spawn(host().prompts().message(std::move(complaint)));
}

void CDlgIspLSC::take_sample(const LensSample& sample, std::size_t of) {
  calibration_.samples.push_back(sample);
  const std::size_t taken = calibration_.samples.size();
  add_to_log(lens_sample_log(sample));
  chart_->refresh();
  host().show_progress(static_cast<int>(taken * 100 / of));
  // What follows the last position switches the picker off by itself.
  if (taken == of) picker_->setEnabled(false);
}

void CDlgIspLSC::finish(LensCalibrationResult result) {
  const CalibrationEnd end = result.end;
  const std::string picker = result.picker;
  const int width = calibration_.width;
  calibration_ = std::move(result.calibration);
  calibration_.width = width;
  add_to_log(result.log);
  show_parameters();
  picker_->setEnabled(true);
  picker_->show_values();
  picker_->enable_keys(end == CalibrationEnd::aborted || values_.picker_on);
  // An abort was a click on the switch, which says so itself.
  if (end != CalibrationEnd::aborted) host().show_status(picker.empty() ? kPickerOffStatus : picker);
}

void CDlgIspLSC::load_file() {
  reload_from_user_data();
  host().show_status("Load File ok");
}

void CDlgIspLSC::load_isp() {
  load({kLensLoadTrigger, "ISP Load Fail...", "Load Isp ok", [this](std::string_view reply) {
          const auto loaded = decode_lens_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          show_parameters();
          return true;
        }});
}

Task<> CDlgIspLSC::run_save() {
  take_typed_text(this);
  PageSave save;
  // Before the file, which may have to be chosen: what is loaded meanwhile belongs neither there nor here.
  save.traffic = lens_full_save(values_);
  const bool written = co_await host().save_everything();
  save.done = written ? "File save done" : kSavedOnChipOnly;
  co_await save_on_chip(host(), std::move(save));
}

void CDlgIspLSC::save_to_user_data() {
  take_typed_text(this);
  qv5123::save_to_user_data(values_, document().user_data);
}

void CDlgIspLSC::reload_from_user_data() {
  qv5123::reload_from_user_data(values_, document().user_data);
  show_parameters();
}

}  // namespace qv5123
