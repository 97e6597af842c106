#include "cli/measured_files.h"

#include "base/atomic_file.h"
#include "cli/complaint.h"
#include "cli/csv.h"
#include "cli/files.h"

namespace qv5123 {
namespace {

void check_range(const std::string& file, const CsvLine& line, std::size_t column, int lowest, int highest) {
  const int value = line.values[column];
  if (value >= lowest && value <= highest) return;
  refuse(file + ", line " + std::to_string(line.number) + ": " + std::to_string(value) + " is not in " +
         std::to_string(lowest) + ".." + std::to_string(highest));
}

/// Colours in a given number of lines, each component 0..`highest`.
std::vector<CsvLine> read_colours(const std::filesystem::path& path, std::size_t count, const char* of,
                                  int highest) {
  const std::string file = path_text(path);
  std::vector<CsvLine> lines = parse_csv(file, read_file(path), 3);
  if (lines.size() != count)
    refuse(file + " has " + std::to_string(lines.size()) + " " + of + " instead of " + std::to_string(count));
  for (const CsvLine& line : lines)
    for (std::size_t c = 0; c < 3; ++c) check_range(file, line, c, 0, highest);
  return lines;
}

template <class Colour>
std::string joined(const Colour& colour) {
  return std::to_string(colour[0]) + "," + std::to_string(colour[1]) + "," + std::to_string(colour[2]) + "\n";
}

}  // namespace

MeasuredColours read_patches(const std::filesystem::path& path) {
  const std::vector<CsvLine> lines = read_colours(path, kPatches, "patches", 0xFFFF);
  MeasuredColours measured{};
  for (std::size_t i = 0; i < kPatches; ++i)
    for (std::size_t c = 0; c < 3; ++c) measured[i][c] = static_cast<std::uint32_t>(lines[i].values[c]);
  return measured;
}

std::string patches_text(const MeasuredColours& measured) {
  std::string text;
  for (const MeasuredColour& colour : measured) text += joined(colour);
  return text;
}

std::vector<LensSample> read_samples(const std::filesystem::path& path, int width) {
  const std::string file = path_text(path);
  std::vector<LensSample> samples;
  for (const CsvLine& line : parse_csv(file, read_file(path), 4)) {
    check_range(file, line, 0, 0, width - 1);
    for (std::size_t c = 1; c < 4; ++c) check_range(file, line, c, 1, 255);
    samples.push_back(lens_sample(line.values[0], {line.values[1], line.values[2], line.values[3]}));
  }
  return samples;
}

std::string samples_text(const std::vector<LensSample>& samples) {
  std::string text;
  for (const LensSample& sample : samples) text += std::to_string(sample.x) + "," + joined(sample.rgb);
  return text;
}

LensField read_field(const std::filesystem::path& path) {
  LensField field;
  for (const CsvLine& line : read_colours(path, kFieldPlaces, "places", 255))
    field.push_back({line.values[0], line.values[1], line.values[2]});
  return field;
}

std::string field_text(const LensField& field) {
  std::string text;
  for (const PerColour& place : field) text += joined(place);
  return text;
}

}  // namespace qv5123
