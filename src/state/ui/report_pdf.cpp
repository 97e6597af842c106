#include "state/ui/report_pdf.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QThread>
#include <QUrl>

#include <memory>

namespace qv5123 {
namespace {

/// Pixels of a picture to one of its own units: enough for a printer.
constexpr int kSharpness = 3;
constexpr int kDotsPerInch = 300;
/// 2 cm in the pixels of a document, whatever the device.
constexpr double kMargin = 2 / 2.54 * 96;

QColor color_of(std::uint32_t color) {
  return QColor::fromRgb(0xFF000000 | color);
}

void paint_shape(QPainter& painter, const Drawing::Shape& shape) {
  painter.setPen(shape.stroke ? QPen(color_of(*shape.stroke), shape.width) : QPen(Qt::NoPen));
  painter.setBrush(shape.fill ? QBrush(color_of(*shape.fill)) : QBrush(Qt::NoBrush));
  QPolygonF points;
  for (const Drawing::Point& point : shape.points) points << QPointF(point.x, point.y);
  if (!shape.text.empty())
    painter.drawText(points.front(), QString::fromStdString(shape.text));
  else if (shape.fill)
    painter.drawPolygon(points);
  else
    painter.drawPolyline(points);
}

QImage painted(const Drawing& drawing) {
  QImage image(QSizeF(drawing.width * kSharpness, drawing.height * kSharpness).toSize(),
               QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(kSharpness, kSharpness);
  QFont font("sans-serif");
  font.setPixelSize(static_cast<int>(Drawing::kTextSize));
  painter.setFont(font);
  for (const Drawing::Shape& shape : drawing.shapes) paint_shape(painter, shape);
  return image;
}

void lay_out(QTextDocument& document, QPagedPaintDevice& device) {
  document.documentLayout()->setPaintDevice(&device);
  QTextFrameFormat frame = document.rootFrame()->frameFormat();
  frame.setMargin(kMargin);
  document.rootFrame()->setFrameFormat(frame);
  document.setPageSize(QSizeF(device.width(), device.height()));
  keep_headings(document);
}

/// With the number of each page at its foot.
void print(QTextDocument& document, QPdfWriter& writer) {
  QPainter painter(&writer);
  painter.setFont(document.defaultFont());
  QAbstractTextDocumentLayout::PaintContext context;
  // Whatever the desktop's colors are.
  context.palette.setColor(QPalette::Text, Qt::black);
  const QSizeF page = document.pageSize();
  const double margin = kMargin * kDotsPerInch / 96;
  for (int i = 0; i < document.pageCount(); ++i) {
    if (i > 0) writer.newPage();
    painter.save();
    painter.translate(0, -i * page.height());
    context.clip = QRectF(0, i * page.height(), page.width(), page.height());
    painter.setClipRect(context.clip);
    document.documentLayout()->draw(&painter, context);
    painter.restore();
    const QRectF foot(margin, page.height() - margin, page.width() - 2 * margin, margin / 2);
    painter.drawText(foot, Qt::AlignRight | Qt::AlignVCenter, QString::number(i + 1));
  }
}

QByteArray written_pdf(const SignOff& report) {
  QTextDocument document;
  int pictures = 0;
  const auto place = [&](const Drawing& drawing) {
    const QString name = QString("picture:%1").arg(pictures++);
    document.addResource(QTextDocument::ImageResource, QUrl(name), painted(drawing));
    return QString("<p><img src=\"%1\" width=\"%2\" height=\"%3\"></p>")
        .arg(name)
        .arg(drawing.width, 0, 'f', 0)
        .arg(drawing.height, 0, 'f', 0)
        .toStdString();
  };
  QFont font("sans-serif");
  font.setPointSize(8);
  document.setDefaultFont(font);
  document.setHtml(QString::fromStdString(sign_off_html(report, place)));
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setPageSize(QPageSize(QPageSize::A4));
  // The document has margins of its own.
  writer.setPageMargins({});
  writer.setResolution(kDotsPerInch);
  writer.setTitle("Sign-off report");
  lay_out(document, writer);
  print(document, writer);
  buffer.close();
  return bytes;
}

/// Where the block's first line is.
int page_of(const QTextDocument& document, const QTextBlock& block) {
  const double top = document.documentLayout()->blockBoundingRect(block).top();
  const QTextLayout& lines = *block.layout();
  return static_cast<int>((top + (lines.lineCount() > 0 ? lines.lineAt(0).y() : 0)) /
                          document.pageSize().height());
}

}  // namespace

void keep_headings(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.next().isValid(); block = block.next()) {
    QTextBlockFormat format = block.blockFormat();
    if (format.headingLevel() == 0 || page_of(document, block) == page_of(document, block.next())) continue;
    format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    QTextCursor(block).setBlockFormat(format);
  }
  // What stands behind a table that goes on over the page's end is left where it was otherwise.
  document.markContentsDirty(0, document.characterCount());
}

// A document has timers, which only the toolkit's own threads can have.
QByteArray sign_off_pdf(const SignOff& report) {
  QByteArray bytes;
  const std::unique_ptr<QThread> thread(QThread::create([&] { bytes = written_pdf(report); }));
  thread->start();
  thread->wait();
  return bytes;
}

}  // namespace qv5123
