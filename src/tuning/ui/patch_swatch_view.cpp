#include "tuning/ui/patch_swatch_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "tuning/ui/chart_tools.h"

namespace qv5123 {
namespace {

constexpr int kChartRows = static_cast<int>(kPatches) / kPatchesInRow;
constexpr double kGap = 4;

}  // namespace

PatchSwatchView::PatchSwatchView() {
  setAccessibleName("Patches");
  setToolTip("Point at a patch for its differences. Ctrl+C copies the picture and the numbers.");
  setFocusPolicy(Qt::StrongFocus);
  add_chart_menu(this, [this] { return numbers(); }, {});
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QString PatchSwatchView::numbers() const {
  QString text = QString("Patch\tReference\tMeasured\tCorrected\tBefore\tAfter") +
                 (second_ ? "\tColor difference fit\n" : "\n");
  const auto colour = [](const auto& shown) { return QColor(display_colour(shown)).name(); };
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    text += QString("%1\t%2").arg(kPatchCaptions[patch]).arg(colour(kPatchReferences[patch]));
    if (const auto match = report_ ? report_->patches[patch] : std::nullopt) {
      text += QString("\t%1\t%2").arg(colour(match->measured), colour(match->corrected));
      text += QString("\t%1\t%2").arg(match->before, 0, 'f', 1).arg(match->after, 0, 'f', 1);
      if (second_) text += QString("\t%1").arg(second_->patches[patch]->after, 0, 'f', 1);
    }
    text += u'\n';
  }
  return text + summary() + u'\n';
}

void PatchSwatchView::show_report(const std::optional<PatchReport>& report,
                                  const std::optional<PatchReport>& second) {
  report_ = report;
  second_ = report ? second : std::nullopt;
  setAccessibleDescription(summary());
  update();
}

QString PatchSwatchView::change(double before, double after, const double* other) const {
  const QString first = QString("%1 \u2192 %2").arg(before, 0, 'f', 1).arg(after, 0, 'f', 1);
  return other ? QString("%1 | %2").arg(first).arg(*other, 0, 'f', 1) : first;
}

QString PatchSwatchView::change_of(std::size_t patch) const {
  const PatchMatch& match = *report_->patches[patch];
  return change(match.before, match.after, second_ ? &second_->patches[patch]->after : nullptr);
}

QString PatchSwatchView::summary() const {
  if (!report_) return {};
  const auto part = [&](double DifferenceSummary::*of) {
    return change(report_->before.*of, report_->after.*of, second_ ? &(second_->after.*of) : nullptr);
  };
  return QString("CIEDE2000:   mean %1   median %2   worst %3")
      .arg(part(&DifferenceSummary::mean), part(&DifferenceSummary::median), part(&DifferenceSummary::worst));
}

double PatchSwatchView::line_height() const {
  return fontMetrics().height();
}

QRectF PatchSwatchView::cell(std::size_t patch) const {
  const QRectF area = QRectF(rect()).adjusted(0, line_height() + kGap, 0, -line_height() - kGap);
  const double cell_width = area.width() / kPatchesInRow;
  const double cell_height = area.height() / kChartRows;
  const int at = static_cast<int>(patch);
  const int row = at / kPatchesInRow;
  return QRectF(area.left() + at % kPatchesInRow * cell_width, area.top() + row * cell_height, cell_width,
                cell_height)
      .adjusted(kGap / 2, kGap / 2, -kGap / 2, -kGap / 2);
}

QString PatchSwatchView::text_at(QPointF point) const {
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    if (!cell(patch).contains(point)) continue;
    const QString caption = kPatchCaptions[patch];
    if (!report_ || !report_->patches[patch]) return caption + ": not measured";
    return caption + ": CIEDE2000 " + change_of(patch);
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
  painter.drawText(
      area, Qt::AlignLeft | Qt::AlignTop,
      second_ ? "Reference | measured | calculated | color difference fit, before \u2192 after | after"
              : "Reference | measured | corrected, and the color difference before \u2192 after");
  painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom,
                   report_ ? summary() : QString("Measure the grays to see the differences."));
  for (std::size_t patch = 0; patch < kPatches; ++patch) paint_patch(painter, patch);
  if (hasFocus()) paint_focus(painter, rect().adjusted(0, 0, -1, -1), palette().color(QPalette::WindowText));
}

void PatchSwatchView::paint_patch(QPainter& painter, std::size_t patch) const {
  const QRectF whole = cell(patch);
  const QRectF swatch = whole.adjusted(0, 0, 0, -line_height());
  const std::optional<PatchMatch> match = report_ ? report_->patches[patch] : std::nullopt;
  painter.fillRect(swatch, QColor(display_colour(kPatchReferences[patch])));
  if (match) {
    const double part = swatch.width() / (second_ ? 4 : 3);
    painter.fillRect(swatch.adjusted(part, 0, 0, 0), QColor(display_colour(match->measured)));
    painter.fillRect(swatch.adjusted(2 * part, 0, 0, 0), QColor(display_colour(match->corrected)));
    if (second_)
      painter.fillRect(swatch.adjusted(3 * part, 0, 0, 0),
                       QColor(display_colour(second_->patches[patch]->corrected)));
  }
  // Black and white patches end somewhere, too.
  painter.setPen(Qt::gray);
  painter.drawRect(swatch);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(whole, Qt::AlignHCenter | Qt::AlignBottom, match ? change_of(patch) : QString("\u2013"));
}

}  // namespace qv5123
