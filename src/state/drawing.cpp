#include "state/drawing.h"

#include <string_view>
#include <utility>

#include "base/hex.h"
#include "base/text.h"
#include "base/utf8.h"

namespace qv5123 {
namespace {

std::string paint_text(const Drawing::Paint& paint) {
  return paint ? "#" + upper_hex(*paint, 6) : "none";
}

std::string number(double value) {
  return fixed(value, 1);
}

std::string svg(const Drawing::Shape& shape) {
  if (!shape.text.empty())
    return "<text x=\"" + number(shape.points[0].x) + "\" y=\"" + number(shape.points[0].y) + "\" fill=\"" +
           paint_text(shape.stroke) + "\">" + escaped(shape.text) + "</text>";
  std::string points;
  for (const Drawing::Point& point : shape.points)
    points += (points.empty() ? "" : " ") + number(point.x) + "," + number(point.y);
  return (shape.fill ? "<polygon points=\"" : "<polyline points=\"") + points + "\" fill=\"" +
         paint_text(shape.fill) + "\" stroke=\"" + paint_text(shape.stroke) + "\" stroke-width=\"" +
         number(shape.width) + "\"/>";
}

}  // namespace

void Drawing::line(std::vector<Point> points, std::uint32_t color, double width) {
  shapes.push_back({std::move(points), color, {}, width, {}});
}

void Drawing::box(double x, double y, double wide, double high, Paint stroke, Paint fill) {
  shapes.push_back(
      {{{x, y}, {x + wide, y}, {x + wide, y + high}, {x, y + high}, {x, y}}, stroke, fill, 1, {}});
}

void Drawing::label(double x, double y, std::string text, std::uint32_t color) {
  shapes.push_back({{{x, y}}, color, {}, 1, std::move(text)});
}

std::string svg(const Drawing& drawing) {
  const std::string size = number(drawing.width) + " " + number(drawing.height);
  std::string text = "<svg role=\"img\" viewBox=\"0 0 " + size + "\" width=\"" + number(drawing.width) +
                     "\" height=\"" + number(drawing.height) + "\" font-size=\"" +
                     number(Drawing::kTextSize) + "\" font-family=\"sans-serif\"><title>" +
                     escaped(drawing.title) + "</title>\n";
  for (const Drawing::Shape& shape : drawing.shapes) text += svg(shape) + "\n";
  return text + "</svg>\n";
}

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : whole_utf8(text)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      case '\n':
      case '\t':
        out += c;
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
          out += "\xEF\xBF\xBD";
        else
          out += c;
    }
  }
  return out;
}

}  // namespace qv5123
