#include "tuning/ui/lens_field_view.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <ranges>

#include "tuning/ui/chart_tools.h"

namespace qv5123 {
namespace {

constexpr std::array<const char*, 3> kNames{"Red", "Green", "Blue"};
constexpr std::array<int, 3> kHues{0, 120, 225};
/// Of the least reading's cell; the most has 1. Small differences are to be seen.
constexpr double kDarkest = 0.35;

QString ripple_text(const LensField& field, std::size_t colour) {
  const FieldDoubt doubt = field_doubt(field, colour);
  if (doubt == FieldDoubt::clipped) return "clipped";
  if (doubt == FieldDoubt::dark) return "dark";
  return QString("ripple %1 %").arg(field_ripple(field)[colour], 0, 'f', 1);
}

std::pair<int, int> extent(const LensField& field, std::size_t colour) {
  const auto [least, most] =
      std::ranges::minmax(field, {}, [colour](const PerColour& place) { return place[colour]; });
  return {least[colour], most[colour]};
}

}  // namespace

LensFieldView::LensFieldView() {
  setAccessibleName("Ripple of the whole picture");
  setToolTip(
      "The readings of 9 x 5 places, 0..255: the darkest place has the least of its color, the brightest the "
      "most, as told above it. Ctrl+C copies.");
  setFocusPolicy(Qt::StrongFocus);
  add_chart_menu(this, [this] { return numbers(); }, {});
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  hide();
}

QString LensFieldView::numbers() const {
  QString text = "Column\tRow\tRed\tGreen\tBlue\n";
  for (std::size_t i = 0; i < field_.size(); ++i) {
    const int at = static_cast<int>(i);
    text += QString("%1\t%2").arg(at % kFieldColumns + 1).arg(at / kFieldColumns + 1);
    for (const int reading : field_[i]) text += QString("\t%1").arg(reading);
    text += u'\n';
  }
  return text;
}

/// "Red: ripple 1.8 %, 225..229".
QString LensFieldView::caption(std::size_t colour) const {
  const QString text = QString("%1: %2").arg(kNames[colour], ripple_text(field_, colour));
  if (field_.empty()) return text;
  const auto [least, most] = extent(field_, colour);
  return text + QString(", %1..%2").arg(least).arg(most);
}

void LensFieldView::show_field(const LensField& field) {
  field_ = field;
  QString text;
  for (std::size_t c = 0; c < kNames.size(); ++c) text += caption(c) + "   ";
  setAccessibleDescription(text.trimmed());
  show();
  update();
}

void LensFieldView::paintEvent(QPaintEvent*) {
  if (field_.empty()) return;
  QPainter painter(this);
  const double third = width() / 3.0;
  for (std::size_t c = 0; c < kNames.size(); ++c)
    paint_colour(painter, QRectF(static_cast<double>(c) * third, 0, third - 6, height()), c);
  if (hasFocus()) paint_focus(painter, rect().adjusted(0, 0, -1, -1), palette().color(QPalette::WindowText));
}

void LensFieldView::paint_colour(QPainter& painter, const QRectF& area, std::size_t colour) const {
  const double line = fontMetrics().height();
  painter.setPen(palette().color(QPalette::WindowText));
  const auto [least, most] = extent(field_, colour);
  QString text = caption(colour);
  if (fontMetrics().horizontalAdvance(text) > area.width()) text.remove("ripple ");
  painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, text);
  const double cell_width = area.width() / kFieldColumns;
  const double cell_height = (area.height() - line) / kFieldRows;
  for (std::size_t i = 0; i < field_.size(); ++i) {
    const int at = static_cast<int>(i);
    const int row = at / kFieldColumns;
    const double share = most > least ? static_cast<double>(field_[i][colour] - least) / (most - least) : 1;
    const QRectF cell(area.left() + at % kFieldColumns * cell_width, area.top() + line + row * cell_height,
                      cell_width, cell_height);
    painter.fillRect(cell, QColor::fromHsvF(static_cast<float>(kHues[colour] / 360.0), 0.6F,
                                            static_cast<float>(kDarkest + (1 - kDarkest) * share)));
  }
}

}  // namespace qv5123
