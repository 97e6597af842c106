#include "tuning/ui/patch_swatch_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <array>
#include <tuple>

namespace qv5123 {
namespace {

constexpr int kChartRows = static_cast<int>(kPatches) / kPatchesInRow;
constexpr double kGap = 4;

QString change(double before, double after) {
  return QString("%1 \u2192 %2").arg(before, 0, 'f', 1).arg(after, 0, 'f', 1);
}

}  // namespace

PatchSwatchView::PatchSwatchView() {
  setAccessibleName("Patches");
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PatchSwatchView::show_report(const std::optional<PatchReport>& report) {
  report_ = report;
  setAccessibleDescription(summary());
  update();
}

QString PatchSwatchView::summary() const {
  if (!report_) return {};
  const auto& [before, after] = std::tie(report_->before, report_->after);
  return QString("CIEDE2000:   mean %1   median %2   worst %3")
      .arg(change(before.mean, after.mean), change(before.median, after.median),
           change(before.worst, after.worst));
}

double PatchSwatchView::line_height() const {
  return fontMetrics().height();
}

QRectF PatchSwatchView::cell(std::size_t patch) const {
  const QRectF area = QRectF(rect()).adjusted(0, line_height() + kGap, 0, -line_height() - kGap);
  const double cell_width = area.width() / kPatchesInRow;
  const double cell_height = area.height() / kChartRows;
  const int at = static_cast<int>(patch);
  return QRectF(area.left() + at % kPatchesInRow * cell_width, area.top() + at / kPatchesInRow * cell_height,
                cell_width, cell_height)
      .adjusted(kGap / 2, kGap / 2, -kGap / 2, -kGap / 2);
}

QString PatchSwatchView::text_at(QPointF point) const {
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    if (!cell(patch).contains(point)) continue;
    const QString caption = kPatchCaptions[patch];
    if (!report_ || !report_->patches[patch]) return caption + ": not measured";
    const PatchMatch& match = *report_->patches[patch];
    return caption + ": CIEDE2000 " + change(match.before, match.after);
  }
  return {};
}

bool PatchSwatchView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  QToolTip::showText(help->globalPos(), text_at(help->pos()), this);
  return true;
}

void PatchSwatchView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  const QRectF area = rect();
  painter.drawText(area, Qt::AlignLeft | Qt::AlignTop,
                   "Reference | measured | corrected, and the color difference before \u2192 after");
  painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom,
                   report_ ? summary() : QString("Measure the grays to see the differences."));
  for (std::size_t patch = 0; patch < kPatches; ++patch) paint_patch(painter, patch);
}

void PatchSwatchView::paint_patch(QPainter& painter, std::size_t patch) const {
  const QRectF whole = cell(patch);
  const QRectF swatch = whole.adjusted(0, 0, 0, -line_height());
  const std::optional<PatchMatch> match = report_ ? report_->patches[patch] : std::nullopt;
  painter.fillRect(swatch, QColor(display_colour(kPatchReferences[patch])));
  if (match) {
    const double third = swatch.width() / 3;
    painter.fillRect(swatch.adjusted(third, 0, 0, 0), QColor(display_colour(match->measured)));
    painter.fillRect(swatch.adjusted(2 * third, 0, 0, 0), QColor(display_colour(match->corrected)));
  }
  // Black and white patches end somewhere, too.
  painter.setPen(Qt::gray);
  painter.drawRect(swatch);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(whole, Qt::AlignHCenter | Qt::AlignBottom,
                   match ? change(match->before, match->after) : QString("\u2013"));
}

}  // namespace qv5123
