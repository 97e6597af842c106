#include "tuning/ui/chart_tools.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QPixmap>
#include <QWheelEvent>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <memory>

namespace qv5123 {
namespace {

constexpr double kLargestFactor = 16;
constexpr double kFactorOfANotch = 1.25;
constexpr double kNotch = 120;
/// Below it a plot counts as dark, 0..255.
constexpr int kDark = 128;
constexpr double kLegendGap = 8;
constexpr double kHiddenOpacity = 0.35;

bool is_dark(const QColor& colour) {
  return colour.lightness() < kDark;
}

QColor between(const QColor& a, const QColor& b, double part) {
  const auto mix = [part](int from, int to) { return static_cast<int>(from + (to - from) * part); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

}  // namespace

ChartColours chart_colours(const QPalette& palette) {
  const QColor plot = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  return {palette.color(QPalette::Window), plot, between(plot, text, 0.2), text};
}

void paint_focus(QPainter& painter, const QRectF& area, const QColor& colour) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour, 1, Qt::DashLine));
  painter.drawRect(area);
}

QColor readable_on(const QColor& plot, const QColor& colour) {
  if (!is_dark(plot) || colour.lightness() > kDark + kDark / 4) return colour;
  return between(colour, Qt::white, 0.45);
}

void draw_on(QPainter& painter, const QRectF& room, int flags, const QString& text, const QColor& plot) {
  painter.fillRect(painter.boundingRect(room, flags, text), plot);
  painter.drawText(room, flags, text);
}

bool ChartZoom::turn(const QWheelEvent& event, const QRectF& plot) {
  const QPointF at((event.position().x() - plot.left()) / plot.width(),
                   (event.position().y() - plot.top()) / plot.height());
  return turn(event.angleDelta().y() / kNotch, at);
}

/// `at` in parts of the plot as it is shown.
bool ChartZoom::turn(double notches, QPointF at) {
  const double wanted = factor_ * std::pow(kFactorOfANotch, notches);
  const double factor = std::clamp(wanted, 1.0, kLargestFactor);
  if (factor == factor_) return false;
  // What is there stays there.
  const QPointF held = origin_ + at / factor_;
  factor_ = factor;
  const double last = 1 - 1 / factor_;
  const QPointF origin = held - at / factor_;
  origin_ = {std::clamp(origin.x(), 0.0, last), std::clamp(origin.y(), 0.0, last)};
  return true;
}

void ChartZoom::step(int notches) {
  if (notches == 0)
    *this = {};
  else
    turn(notches, {0.5, 0.5});
}

QTransform ChartZoom::transform(const QRectF& plot) const {
  const QPointF shown = plot.topLeft() + QPointF(origin_.x() * plot.width(), origin_.y() * plot.height());
  QTransform transform = QTransform::fromTranslate(plot.left(), plot.top());
  transform.scale(factor_, factor_);
  return transform.translate(-shown.x(), -shown.y());
}

void ChartLegend::paint(QPainter& painter, const QRectF& area, const std::vector<Entry>& entries) {
  places_.assign(entries.size(), QRectF());
  const QFontMetricsF metrics(painter.font());
  double right = area.right();
  painter.save();
  for (std::size_t i = entries.size(); i-- > 0;) {
    if (entries[i].name.isEmpty()) continue;
    const double width = metrics.horizontalAdvance(entries[i].name);
    places_[i] = QRectF(right - width, area.top(), width, metrics.height());
    right -= width + kLegendGap;
    painter.setOpacity(shows(i) ? 1 : kHiddenOpacity);
    painter.setPen(entries[i].colour);
    painter.drawText(places_[i], Qt::AlignCenter | Qt::TextDontClip, entries[i].name);
  }
  painter.restore();
}

bool ChartLegend::click(QPointF at) {
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (!places_[i].adjusted(-kLegendGap / 2, 0, kLegendGap / 2, 0).contains(at)) continue;
    flip(i);
    return true;
  }
  return false;
}

bool ChartLegend::press(int key) {
  int name = key - Qt::Key_1;
  if (name < 0 || key > Qt::Key_9) return false;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (places_[i].isEmpty() || name-- > 0) continue;
    flip(i);
    return true;
  }
  return false;
}

int ChartLegend::names() const {
  return static_cast<int>(
      std::ranges::count_if(places_, [](const QRectF& place) { return !place.isEmpty(); }));
}

void ChartLegend::flip(std::size_t entry) {
  if (hidden_.erase(entry) == 0) hidden_.insert(entry);
}

void add_chart_menu(QWidget* chart, std::function<QString()> numbers, std::function<void(int notches)> zoom) {
  auto* copy = new QAction("Copy picture and numbers", chart);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  QObject::connect(copy, &QAction::triggered, chart, [chart, numbers = std::move(numbers)] {
    auto data = std::make_unique<QMimeData>();
    data->setImageData(chart->grab().toImage());
    data->setText(numbers());
    QGuiApplication::clipboard()->setMimeData(data.release());
  });
  chart->addAction(copy);
  chart->setContextMenuPolicy(Qt::ActionsContextMenu);
  if (!zoom) return;
  const auto add = [&](const char* text, const char* key, int notches) {
    auto* action = new QAction(text, chart);
    action->setShortcut(QKeySequence(key));
    action->setShortcutContext(Qt::WidgetShortcut);
    QObject::connect(action, &QAction::triggered, chart, [zoom, notches] { zoom(notches); });
    chart->addAction(action);
  };
  add("Enlarge", "+", 1);
  add("Make smaller", "-", -1);
  add("Show all of it", "0", 0);
}

}  // namespace qv5123
