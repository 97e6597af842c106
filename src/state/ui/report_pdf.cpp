#include "state/ui/report_pdf.h"

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextDocument>
#include <QThread>
#include <QUrl>

#include <memory>

namespace qv5123 {
namespace {

/// Pixels of a picture to one of its own units: enough for a printer.
constexpr int kSharpness = 3;
constexpr int kDotsPerInch = 300;

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
  document.print(&writer);
  buffer.close();
  return bytes;
}

}  // namespace

// A document has timers, which only the toolkit's own threads can have.
QByteArray sign_off_pdf(const SignOff& report) {
  QByteArray bytes;
  const std::unique_ptr<QThread> thread(QThread::create([&] { bytes = written_pdf(report); }));
  thread->start();
  thread->wait();
  return bytes;
}

}  // namespace qv5123
