#include "tuning/ui/dlg_isp_gamma_rgb.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "base/delay.h"
#include "tuning/gamma_curve.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{50};

constexpr std::array<const char*, kGammaCurves> kCurveNames{"R", "G", "B", "Front"};
constexpr std::array<std::uint8_t, 3> kCurveRegisters{0x03, 0x04, 0x05};
constexpr double kHighestExponent = 100;

QDoubleSpinBox* make_exponent(const QString& name, double value) {
  auto* box = named(new QDoubleSpinBox, name, "Exponent of the power law, 0..100");
  // The same point in every language, as in the files.
  box->setLocale(QLocale::c());
  box->setRange(0, kHighestExponent);
  // A value that was computed elsewhere comes in whole.
  box->setDecimals(8);
  box->setSingleStep(0.01);
  box->setValue(value);
  box->setKeyboardTracking(false);
  keep_wheel_from(box);
  mark_refusals_of(box);
  return box;
}

QLabel* centred(const QString& text) {
  auto* label = new QLabel(text);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

QHBoxLayout* flat_row(QWidget* parent) {
  auto* row = new QHBoxLayout(parent);
  row->setContentsMargins(0, 0, 0, 0);
  return row;
}

QGridLayout* tight_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(0);
  return grid;
}

}  // namespace

CDlgIspGammaRgb::CDlgIspGammaRgb(PageHost& host) : TuningPage(host), chart_(new GammaChartView(values_)) {
  if (document().front_gamma_level == 0) document().front_gamma_level = kDefaultFrontGammaLevel;
  auto* left = new QVBoxLayout;
  left->setSpacing(4);
  left->addWidget(chart_, 1);
  left->addWidget(make_channel_row());
  left->addWidget(make_gamma_row());
  left->addWidget(front_row_ = make_front_row());
  left->addWidget(make_message_row());
  auto* right = new QVBoxLayout;
  right->setSpacing(4);
  right->addWidget(make_point_groups(), 1);
  right->addWidget(make_file_control({[this] { load_file(); }, [this] { load_isp(); },
                                      [this] { save(run_save()); }, "Reads the curves, register 0x07",
                                      "Sends all three curves for the chip to keep, registers 0x03, 0x04, "
                                      "0x05 and 0x06"}));
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  page->addLayout(right);
  connect_chart();
  show_more(false);
  reload_from_user_data();
}

QWidget* CDlgIspGammaRgb::make_channel_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  channels_ = new QButtonGroup(this);
  add_channel(row, kGammaGreen, "G");
  add_channel(row, kGammaBlue, "B");
  add_channel(row, kGammaRed, "R");
  add_channel(row, kGammaRgb, "RGB");
  add_channel(row, kGammaFront, "Front Gamma");
  connect(channels_, &QButtonGroup::idClicked, this, &CDlgIspGammaRgb::channel_clicked);
  row->addStretch(1);
  row->addWidget(
      make_check("More", "More", "Shows the front gamma controls", [this](bool on) { show_more(on); }));
  row->addWidget(make_button("Apply", {},
                             "Sends the selected curves point by point, registers 0x03, 0x04, 0x05",
                             [this] { apply(); }));
  return widget;
}

QRadioButton* CDlgIspGammaRgb::add_channel(QLayout* row, GammaChannel channel, const QString& caption) {
  auto* radio = named(new QRadioButton(caption), "Channel " + caption, "What Set and Apply act on");
  channels_->addButton(radio, channel);
  row->addWidget(radio);
  return radio;
}

QWidget* CDlgIspGammaRgb::make_gamma_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  auto* label = new QLabel("Gamma Value");
  gamma_value_ = make_exponent("Gamma Value", values_.gamma_value);
  label->setBuddy(gamma_value_);
  connect(gamma_value_, &QDoubleSpinBox::valueChanged, this,
          [this](double value) { values_.gamma_value = value; });
  row->addWidget(label);
  row->addWidget(gamma_value_);
  row->addWidget(
      make_set_button("Set", "Gamma Value", "Computes the selected curves", [this] { set_end(); }));
  row->addSpacing(12);
  itu_ = make_check("Standard ITU.709 Gamma", {}, "Computes with the linear start of ITU-R BT.709",
                    [this](bool on) { values_.itu_709 = on; });
  row->addWidget(itu_);
  row->addStretch(1);
  return widget;
}

QWidget* CDlgIspGammaRgb::make_front_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  auto* label = new QLabel("Front Gamma Value");
  front_value_ = make_exponent("Front Gamma Value", values_.front_gamma_value);
  label->setBuddy(front_value_);
  connect(front_value_, &QDoubleSpinBox::valueChanged, this,
          [this](double value) { values_.front_gamma_value = value; });
  row->addWidget(label);
  row->addWidget(front_value_);
  row->addWidget(
      make_set_button("Set", "Front Gamma Value", "Computes the front curve", [this] { set_front(); }));
  row->addStretch(1);
  return widget;
}

QWidget* CDlgIspGammaRgb::make_message_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  messages_ = make_log("Messages", "The points of each computed curve");
  messages_->setFixedHeight(messages_->fontMetrics().lineSpacing() * 3 + 14);
  row->addWidget(messages_, 1);
  row->addWidget(make_button("Clear", {}, "Empties the messages", [this] { messages_->clear(); }), 0,
                 Qt::AlignTop);
  return widget;
}

QWidget* CDlgIspGammaRgb::make_point_groups() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  auto* front_group = new QGroupBox("Front Gamma");
  auto* end_group = new QGroupBox("End Gamma(RGB or Light1,2,3)");
  auto* front = tight_grid(front_group);
  auto* end = tight_grid(end_group);
  front->addWidget(centred("Front"), 0, 1);
  for (int id = kRedCurve; id <= kBlueCurve; ++id) end->addWidget(centred(kCurveNames[id]), 0, id);
  for (std::size_t point = 0; point < kGammaPoints; ++point) add_point_row(front, end, point);
  // What height is left over goes below the last point.
  front->setRowStretch(static_cast<int>(kGammaPoints) + 1, 1);
  end->setRowStretch(static_cast<int>(kGammaPoints) + 1, 1);
  row->addWidget(front_group);
  row->addWidget(end_group);
  return widget;
}

void CDlgIspGammaRgb::add_point_row(QGridLayout* front, QGridLayout* end, std::size_t point) {
  const int line = static_cast<int>(point) + 1;
  auto* label = new QLabel(QString::number(line));
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  front->addWidget(label, line, 0);
  front->addWidget(make_point(kFrontCurve, point), line, 1);
  for (GammaCurveId id : {kRedCurve, kGreenCurve, kBlueCurve})
    end->addWidget(make_point(id, point), line, id);
}

QSpinBox* CDlgIspGammaRgb::make_point(GammaCurveId id, std::size_t point) {
  const QString at = QString("0..1023, the curve's value at %1 of 0..1023").arg(kGammaPositions[point]);
  const QString tooltip = id == kFrontCurve ? at : at + ", " + register_text(kCurveRegisters[id]);
  auto* box =
      make_number(0, kGammaMaximum, QString("Point %1 %2").arg(point + 1).arg(kCurveNames[id]), tooltip);
  box->setEnabled(id != kFrontCurve);
  box->setAlignment(Qt::AlignRight);
  connect(box, &QSpinBox::valueChanged, this, [this, id, point](int value) {
    values_.curve(id)[point] = value;
    chart_->refresh();
  });
  points_[id][point] = box;
  return box;
}

void CDlgIspGammaRgb::connect_chart() {
  connect(chart_, &GammaChartView::point_dragged, this, [this](const GammaHit& points, int value) {
    move_gamma_point(values_, points, value);
    show_moved(points);
  });
  connect(chart_, &GammaChartView::point_nudged, this, [this](const GammaHit& points, int delta) {
    for (GammaCurveId id : points.curves) {
      int& value = values_.curve(id)[points.point];
      value = spin_gamma_point(value, delta);
    }
    show_moved(points);
  });
}

void CDlgIspGammaRgb::show_more(bool more) {
  channels_->button(kGammaFront)->setVisible(more);
  front_row_->setVisible(more);
}

void CDlgIspGammaRgb::show_values() {
  channels_->button(values_.channel)->setChecked(true);
  show_points();
}

void CDlgIspGammaRgb::show_points() {
  for (std::size_t id = 0; id < kGammaCurves; ++id) {
    for (std::size_t point = 0; point < kGammaPoints; ++point) {
      show_value(points_[id][point], values_.curves[id][point]);
    }
  }
  chart_->refresh();
}

void CDlgIspGammaRgb::show_moved(const GammaHit& points) {
  for (GammaCurveId id : points.curves) {
    show_value(points_[id][points.point], values_.curve(id)[points.point]);
  }
  chart_->refresh();
}

void CDlgIspGammaRgb::log_selected_curves() {
  for (GammaCurveId id : selected_curves(values_.channel)) {
    QStringList points;
    for (int value : values_.curve(id)) points << QString::number(value);
    messages_->appendPlainText(QString("%1: %2").arg(kCurveNames[id], points.join(", ")));
  }
}

void CDlgIspGammaRgb::channel_clicked(int channel) {
  values_.channel = channel_after_click(static_cast<GammaChannel>(channel));
  show_values();
}

void CDlgIspGammaRgb::set_end() {
  take_typed_text(this);
  if (set_end_gamma(values_, document().front_gamma_level) == GammaResult::invalid) {
    return spawn(host().prompts().message({"Invalid values."}));
  }
  show_points();
  log_selected_curves();
}

void CDlgIspGammaRgb::set_front() {
  take_typed_text(this);
  if (set_front_gamma(values_) == GammaResult::invalid) {
    return spawn(host().prompts().message({"Invalid values"}));
  }
  host().show_status("Calculate Front Gamma values.");
  show_points();
}

void CDlgIspGammaRgb::apply() {
  take_typed_text(this);
  host().show_status("Gamma data applying...");
  PageSave curves;
  curves.traffic = gamma_apply(values_);
  curves.done = "Gamma data apply done";
  send_with_progress(std::move(curves));
}

void CDlgIspGammaRgb::load_file() {
  reload_from_user_data();
  host().show_status("Load File ok..");
}

void CDlgIspGammaRgb::load_isp() {
  load({kGammaLoadTrigger, "ISP Load Fail...", "Load Isp ok..", [this](std::string_view reply) {
          const auto loaded = decode_gamma_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          show_points();
          return true;
        }});
}

Task<> CDlgIspGammaRgb::run_save() {
  host().show_status("Gamma Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  take_typed_text(this);
  PageSave save;
  save.traffic = gamma_full_save(values_);
  save.done = "Gamma Save Done.";
  co_await save_on_chip(host(), std::move(save));
}

void CDlgIspGammaRgb::save_to_user_data() {
  take_typed_text(this);
  qv5123::save_to_user_data(values_, document().user_data);
}

void CDlgIspGammaRgb::reload_from_user_data() {
  values_.loaded_channel = static_cast<GammaChannel>(document().gamma_channel);
  qv5123::reload_from_user_data(values_, document().user_data);
  document().gamma_channel = values_.loaded_channel;
  show_values();
}

}  // namespace qv5123
