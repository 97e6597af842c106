#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// A picture of a report, as shapes: as SVG it is part of an HTML file, and whoever has a painter paints it.
struct Drawing {
  /// 0xRRGGBB; nothing is transparent.
  using Paint = std::optional<std::uint32_t>;
  struct Point {
    double x = 0;
    double y = 0;
  };
  /// A line through its points, closed where it is filled, or a text from its first point on.
  struct Shape {
    std::vector<Point> points;
    Paint stroke;
    Paint fill;
    double width = 1;
    std::string text;
  };

  void line(std::vector<Point> points, std::uint32_t color, double width = 1);
  void box(double x, double y, double wide, double high, Paint stroke, Paint fill);
  void label(double x, double y, std::string text, std::uint32_t color = 0);

  static constexpr double kTextSize = 11;

  std::string title;  ///< what it shows, for who cannot see it
  double width = 0;
  double height = 0;
  std::vector<Shape> shapes;
};

/// As an element of an HTML file. Title and texts are escaped.
std::string svg(const Drawing& drawing);

/// "&lt;" for "<" and so on: text that comes from a chip or a file and is to be text in HTML and nothing
/// else. Control characters and what is no UTF-8 become U+FFFD.
std::string escaped(std::string_view text);

}  // namespace qv5123
