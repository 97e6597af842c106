#include <string>
#include <vector>

#include "base/text.h"
#include "state/comparison.h"

namespace qv5123 {
namespace {

using Parts = std::vector<std::string>;

std::string line(const Parts& parts, const char* between) {
  std::string text;
  for (const std::string& part : parts) text += (&part == parts.data() ? "" : between) + part;
  return text + "\n";
}

std::string number_text(const Comparison& comparison, std::size_t value, Place place) {
  const std::optional<int> number = comparison.number(value, place);
  return number ? std::to_string(*number) : std::string();
}

Parts text_parts(const Comparison& comparison, std::size_t value) {
  Parts parts{comparison.page_name(value), comparison.field(value).name,
              comparison.field(value).caption.caption()};
  for (const Place place : {Place::page, Place::chip, Place::file})
    parts.push_back(comparison.text(value, place));
  if (comparison.other()) parts.push_back(comparison.text(value, Place::other));
  return parts;
}

Parts csv_parts(const Comparison& comparison, std::size_t value) {
  const Known how = comparison.state(value).chip.how;
  Parts parts{comparison.page_name(value),
              comparison.field(value).name,
              csv_field(comparison.field(value).caption.caption()),
              number_text(comparison, value, Place::page),
              number_text(comparison, value, Place::chip),
              how == Known::nothing ? std::string() : csv_field(known_text(how)),
              number_text(comparison, value, Place::file)};
  if (comparison.other()) parts.push_back(number_text(comparison, value, Place::other));
  return parts;
}

}  // namespace

std::string comparison_as_text(const Comparison& comparison, const std::vector<std::size_t>& values) {
  Parts titles{"Page", "Name", "Control", "In page", "On chip", "In file"};
  if (comparison.other()) titles.push_back(comparison.other()->title);
  std::string text = line(titles, "\t");
  for (const std::size_t value : values) text += line(text_parts(comparison, value), "\t");
  return text;
}

std::string comparison_as_csv(const Comparison& comparison, const std::vector<std::size_t>& values) {
  Parts titles{"page", "name", "control", "in_page", "on_chip", "chip_known", "in_file"};
  if (comparison.other()) titles.push_back(csv_field(comparison.other()->title));
  std::string text = line(titles, ",");
  for (const std::size_t value : values) text += line(csv_parts(comparison, value), ",");
  return text;
}

}  // namespace qv5123
