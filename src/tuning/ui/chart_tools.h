#pragma once

#include <QColor>
#include <QPalette>
#include <QPointF>
#include <QRectF>
#include <QTransform>
#include <functional>
#include <set>
#include <vector>

class QPainter;
class QWheelEvent;
class QWidget;

namespace qv5123 {

/// What a chart is drawn with beside its data, in the colours of the palette.
struct ChartColours {
  QColor paper;  ///< around the plot
  QColor plot;
  QColor grid;
  QColor text;
};
ChartColours chart_colours(const QPalette& palette);

/// The frame in `area` of a chart that has the keys, in `colour`.
void paint_focus(QPainter& painter, const QRectF& area, const QColor& colour);

/// `colour`, lightened where it would not stand out from a dark `plot`.
QColor readable_on(const QColor& plot, const QColor& colour);

/// Draws the text with `plot` behind it, so that what was drawn there before does not strike it through.
void draw_on(QPainter& painter, const QRectF& room, int flags, const QString& text, const QColor& plot);

/// What part of a plot is shown. The wheel enlarges around the mouse, keys around the middle, up to 16 times.
class ChartZoom {
 public:
  /// Takes a turn of the wheel at a point of the widget, where the whole plot stands in `plot`. True where
  /// something changed.
  bool turn(const QWheelEvent& event, const QRectF& plot);
  /// Enlarges what is in the middle by so many notches of the wheel; 0 shows all of it again.
  void step(int notches);
  double factor() const { return factor_; }
  /// From where a point of the whole plot would stand to where it does.
  QTransform transform(const QRectF& plot) const;

 private:
  bool turn(double notches, QPointF at);

  double factor_ = 1;
  QPointF origin_;  // of what is shown, in parts of the whole from its left upper corner
};

/// Names of what a chart shows, in a row. A click, or the key of its number in the row, hides or shows what
/// the name stands for.
class ChartLegend {
 public:
  struct Entry {
    QString name;
    QColor colour;
  };
  /// Draws the names, the last of them ending at the right edge of `area`. One without a name is not there.
  void paint(QPainter& painter, const QRectF& area, const std::vector<Entry>& entries);
  /// Where the name stood when it was last drawn.
  QRectF place(std::size_t entry) const { return entry < places_.size() ? places_[entry] : QRectF(); }
  /// True where the point, of the painter's coordinates, was on a name.
  bool click(QPointF at);
  /// Qt::Key_1 stands for the first name. True where there is a name of that number.
  bool press(int key);
  /// How many names were drawn.
  int names() const;
  bool shows(std::size_t entry) const { return hidden_.count(entry) == 0; }

 private:
  void flip(std::size_t entry);

  std::vector<QRectF> places_;
  std::set<std::size_t> hidden_;
};

/// Gives a chart its menu, with the keys of it: it is copied as a picture with its numbers as text, enlarged
/// and shown whole again by `zoom`, which takes what ChartZoom::step() takes and may be empty.
void add_chart_menu(QWidget* chart, std::function<QString()> numbers, std::function<void(int notches)> zoom);

}  // namespace qv5123
