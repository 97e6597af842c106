#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

/// What a user does with a chart.
namespace qv5123::test {

/// The wheel is turned forward by two notches over a point of the chart.
inline void enlarge(QWidget* chart, QPointF at) {
  QWheelEvent wheel(at, chart->mapToGlobal(at), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(chart, &wheel);
}

/// The first item of the chart's menu: what it copies as text. A picture has to come with it.
inline QString copied(QWidget* chart) {
  QApplication::clipboard()->clear();
  chart->actions().first()->trigger();
  EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasImage());
  return QApplication::clipboard()->mimeData()->text();
}

/// Of two colours as people see them, 1..21; what is to be read needs some 3.
inline double contrast(const QColor& a, const QColor& b) {
  const auto light = [](const QColor& colour) {
    const auto part = [](double share) {
      return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF()) +
           0.05;
  };
  return std::max(light(a), light(b)) / std::min(light(a), light(b));
}

}  // namespace qv5123::test
