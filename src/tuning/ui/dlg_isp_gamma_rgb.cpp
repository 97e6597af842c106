#include "tuning/ui/dlg_isp_gamma_rgb.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <array>
#include <map>
#include <utility>

#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

constexpr double kHighestExponent = 100;
constexpr std::array kAllCurves{GammaCurveId::red, GammaCurveId::green, GammaCurveId::blue,
                                GammaCurveId::front};

QDoubleSpinBox* make_exponent(const QString& name, double value, std::function<void(double)> typed) {
  // A value that was computed elsewhere comes in whole.
  auto* box = named(new RealEdit(0, kHighestExponent, 8), name, "Exponent of the power law, 0..100");
  box->setSingleStep(0.01);
  box->setValue(value);
  keep_wheel_from(box);
  QObject::connect(box, &QDoubleSpinBox::valueChanged, box, std::move(typed));
  return box;
}

QHBoxLayout* flat_row(QWidget* parent) {
  auto* row = new QHBoxLayout(parent);
  row->setContentsMargins(0, 0, 0, 0);
  return row;
}

void add_labelled(QHBoxLayout* row, const QString& caption, QWidget* edit) {
  auto* label = new QLabel(caption);
  label->setBuddy(edit);
  row->addWidget(label);
  row->addWidget(edit);
}

QGridLayout* tight_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(0);
  return grid;
}

}  // namespace

CDlgIspGammaRgb::CDlgIspGammaRgb(PageHost& host)
    : TuningDialog(host, desk_),
      desk_(host, host.document().user_data, host.document().front_gamma_level),
      edits_(desk_, [this] { chart_->refresh(); }),
      chart_(new GammaChartView(desk_.values())) {
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
  right->addWidget(make_file_control({[this] { desk_.load_file(); }, [this] { desk_.start_load(); },
                                      [this] { desk_.start_save(this->host().prompts(), desk_.save()); },
                                      "Reads the curves, " + register_text(GammaPage::kTexts.trigger),
                                      save_tip(SavedFile::none), make_unread_note()}));
  auto* page = new QHBoxLayout(this);
  page->setContentsMargins(6, 6, 6, 6);
  page->addLayout(left, 1);
  page->addLayout(right);
  connect(chart_, &GammaChartView::point_dragged, this,
          [this](const GammaHit& points, int value) { desk_.drag(points, value); });
  connect(chart_, &GammaChartView::drag_ended, this, [this] { desk_.end_drag(); });
  connect(chart_, &GammaChartView::point_nudged, this,
          [this](const GammaHit& points, int delta) { desk_.nudge(points, delta); });
  desk_.attach(*this);
  show_more(false);
  show_values();
}

QWidget* CDlgIspGammaRgb::make_channel_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  channels_ = new QButtonGroup(this);
  for (const GammaChannel channel :
       {GammaChannel::green, GammaChannel::blue, GammaChannel::red, GammaChannel::rgb, GammaChannel::front})
    add_channel(row, channel);
  on_choice(channels_, [this](int channel) { desk_.choose_channel(static_cast<GammaChannel>(channel)); });
  row->addStretch(1);
  row->addWidget(mark_unfolds(keep_choice(
      make_check("More", "More", "Shows the front gamma controls", [this](bool on) { show_more(on); }))));
  row->addWidget(make_button("Apply", {}, "Sends the selected curves point by point, " + end_registers(),
                             [this] { desk_.apply(); }));
  return widget;
}

void CDlgIspGammaRgb::add_channel(QLayout* row, GammaChannel channel) {
  const int number = static_cast<int>(channel);
  const QString caption = kGammaChannels[static_cast<std::size_t>(number)];
  auto* radio = named(new QRadioButton(caption), "Channel " + caption, "What Set and Apply act on");
  channels_->addButton(radio, number);
  row->addWidget(radio);
}

QString CDlgIspGammaRgb::end_registers() const {
  std::vector<int> addresses;
  addresses.reserve(std::size(kEndGammaCurves));
  for (const GammaCurveId id : kEndGammaCurves)
    addresses.push_back(desk_.info(desk_.values().curve(id)[0]).address);
  return registers_text(addresses);
}

QWidget* CDlgIspGammaRgb::make_gamma_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  add_labelled(row, "Gamma Value",
               make_exponent("Gamma Value", desk_.values().gamma_value,
                             [this](double gamma) { desk_.type_gamma(gamma); }));
  row->addWidget(make_set_button("Set", "Gamma Value", "Computes the selected curves",
                                 [this] { desk_.compute_end(host().prompts()); }));
  row->addSpacing(12);
  row->addWidget(make_check("Standard ITU.709 Gamma", {}, "Computes with the linear start of ITU-R BT.709",
                            [this](bool on) { desk_.choose_itu_709(on); }));
  row->addStretch(1);
  return widget;
}

QWidget* CDlgIspGammaRgb::make_front_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  add_labelled(row, "Front Gamma Value",
               make_exponent("Front Gamma Value", desk_.values().front_gamma_value,
                             [this](double gamma) { desk_.type_front_gamma(gamma); }));
  row->addWidget(make_set_button("Set", "Front Gamma Value", "Computes the front curve",
                                 [this] { desk_.compute_front(host().prompts()); }));
  row->addStretch(1);
  return widget;
}

QWidget* CDlgIspGammaRgb::make_message_row() {
  auto* widget = new QWidget;
  auto* row = flat_row(widget);
  messages_ = make_log("Messages", "The points of each computed curve");
  messages_->setFixedHeight(messages_->fontMetrics().lineSpacing() * 3 + 14);
  row->addWidget(messages_, 1);
  row->addWidget(make_button("Clear", {}, "Empties the messages",
                             [this] {
                               messages_->clear();
                               host().show_status("Messages emptied");
                             }),
                 0, Qt::AlignTop);
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
  for (std::size_t c = 0; c < kEndGammaCurves.size(); ++c)
    end->addWidget(centred(kGammaCurveNames[c]), 0, static_cast<int>(c));
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
  QSpinBox* shown_only = make_point(GammaCurveId::front, point);
  shown_only->setEnabled(false);
  front->addWidget(shown_only, line, 1);
  for (const GammaCurveId id : kEndGammaCurves)
    end->addWidget(make_point(id, point), line, static_cast<int>(id));
}

QSpinBox* CDlgIspGammaRgb::make_point(GammaCurveId id, std::size_t point) {
  QSpinBox* box = edits_.number(desk_.field(desk_.values().curve(id)[point]));
  box->setToolTip(QString("The curve's value at %1 of 0..1023: ").arg(kGammaPositions[point]) +
                  box->toolTip());
  box->setAlignment(Qt::AlignRight);
  return box;
}

void CDlgIspGammaRgb::show_more(bool more) {
  channels_->button(static_cast<int>(GammaChannel::front))->setVisible(more);
  front_row_->setVisible(more);
}

void CDlgIspGammaRgb::show_values() {
  show_choice(channels_, static_cast<int>(desk_.values().channel));
  edits_.show();
  show_file();
  chart_->refresh();
}

void CDlgIspGammaRgb::show_file() {
  const UserDataImage& image = host().document().user_data;
  std::map<GammaCurveId, GammaCurve> curves;
  if (image.loaded()) {
    GammaValues file;
    load_page<GammaPage>(file, image);
    for (const GammaCurveId id : kAllCurves) curves[id] = file.curve(id);
  }
  chart_->show_others(GammaPlace::file, std::move(curves));
}

void CDlgIspGammaRgb::show_marks(const std::vector<ValueMark>& marks) {
  edits_.show_marks(marks);
  std::map<GammaCurveId, GammaCurve> curves;
  for (const GammaCurveId id : kAllCurves)
    if (const auto curve = chip_curve(id, marks)) curves[id] = *curve;
  chart_->show_others(GammaPlace::chip, std::move(curves));
}

/// A curve of which a point is not known is none.
std::optional<GammaCurve> CDlgIspGammaRgb::chip_curve(GammaCurveId id,
                                                      const std::vector<ValueMark>& marks) const {
  GammaCurve curve = desk_.values().curve(id);
  for (std::size_t point = 0; point < kGammaPoints; ++point) {
    const std::optional<int> chip = marks[desk_.field(desk_.values().curve(id)[point])].chip;
    if (!chip) return std::nullopt;
    curve[point] = *chip;
  }
  return curve;
}

void CDlgIspGammaRgb::show_moved(const GammaHit& points) {
  for (const GammaCurveId id : points.curves)
    edits_.show(desk_.field(desk_.values().curve(id)[points.point]));
  chart_->refresh();
}

void CDlgIspGammaRgb::add_message(const std::string& text) {
  messages_->appendPlainText(QString::fromStdString(text));
}

}  // namespace qv5123
