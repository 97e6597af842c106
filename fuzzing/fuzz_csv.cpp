// The command line's tables of numbers, and what is computed from them.
#include <algorithm>

#include "cli/complaint.h"
#include "cli/csv.h"
#include "cli/numbers.h"
#include "fuzz_input.h"
#include "tuning/lens_fit.h"
#include "tuning/matrix_fit.h"
#include "tuning/patch_report.h"

using namespace qv5123;

namespace {

/// Complaints are one line, for a terminal.
template <class Read>
void read_or_refuse(const Read& read) {
  try {
    read();
  } catch (const Complaint& complaint) {
    fuzz::require(complaint.code == ExitCode::bad_input, "a bad file is bad input");
    fuzz::require(!complaint.text.empty(), "a complaint says something");
    fuzz::require(complaint.text.find('\n') == std::string::npos, "a complaint is one line");
  }
}

/// As `compute lens` does with numbers in range.
void fit_samples(const std::vector<CsvLine>& lines) {
  std::vector<LensSample> samples;
  for (const CsvLine& line : lines) {
    const auto level = [&](std::size_t c) { return std::clamp(line.values[c], 1, 255); };
    samples.push_back(lens_sample(std::clamp(line.values[0], 0, 4095), {level(1), level(2), level(3)}));
  }
  const LensCentre centre = fit_lens_centre(samples, 4096);
  const LensFit fit = fit_lens(samples, centre, 100);
  (void)lens_fit_log(centre, fit);
  for (std::size_t c = 0; c < 3; ++c) {
    fuzz::require(fit.parameter1[c] >= 0 && fit.parameter1[c] <= 4095, "a parameter has 12 bits");
    fuzz::require(fit.parameter2[c] >= 0 && fit.parameter2[c] <= 4095, "a parameter has 12 bits");
  }
}

/// As `compute matrix` does; the lines again from the first one on where there are too few.
void fit_patches(const std::vector<CsvLine>& lines) {
  if (lines.empty()) return;
  MatrixValues values;
  for (std::size_t i = 0; i < kPatches; ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      const int level = lines[i % lines.size()].values[c];
      values.measured[i][c] = static_cast<std::uint32_t>(std::clamp(level, 0, 0xFFFF));
    }
  }
  const auto fit = fit_matrix(values.measured, 100);
  if (fit && fit->solvable) (void)patch_report(values.measured, fit->coefficients);
  calculate_matrix(values);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t columns = data[0] % 24u + 1;
  const auto text = fuzz::text_of({data + 1, size - 1});
  read_or_refuse([&] {
    const std::vector<CsvLine> lines = parse_csv("file.csv", text, columns);
    for (const CsvLine& line : lines) {
      fuzz::require(line.number > 0, "lines count from 1");
      fuzz::require(line.values.size() == columns, "a line has its columns");
    }
    if (columns == 3) fit_patches(lines);
    if (columns == 4) fit_samples(lines);
  });
  const auto word = text.substr(0, text.find('\n'));
  read_or_refuse([&] { (void)real_number("NUMBER", word); });
  read_or_refuse([&] {
    const int number = number_in("NUMBER", word, -5, 70000);
    fuzz::require(number >= -5 && number <= 70000, "a number is in its range");
  });
  return 0;
}
