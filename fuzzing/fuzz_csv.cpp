// The command line's tables of numbers.
#include "cli/complaint.h"
#include "cli/csv.h"
#include "cli/numbers.h"
#include "fuzz_input.h"

using namespace qv5123;

namespace {

/// Complaints are one line, for a terminal.
template <class Read>
void read_or_refuse(const Read& read) {
  try {
    read();
  } catch (const Complaint& complaint) {
    fuzz::require(complaint.code == kBadInput, "a bad file is bad input");
    fuzz::require(!complaint.text.empty(), "a complaint says something");
    fuzz::require(complaint.text.find('\n') == std::string::npos, "a complaint is one line");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t columns = data[0] % 24u + 1;
  const auto text = fuzz::text_of({data + 1, size - 1});
  read_or_refuse([&] {
    for (const CsvLine& line : parse_csv("file.csv", text, columns)) {
      fuzz::require(line.number > 0, "lines count from 1");
      fuzz::require(line.values.size() == columns, "a line has its columns");
    }
  });
  const auto word = text.substr(0, text.find('\n'));
  read_or_refuse([&] { (void)real_number("NUMBER", word); });
  read_or_refuse([&] {
    const int number = number_in("NUMBER", word, -5, 70000);
    fuzz::require(number >= -5 && number <= 70000, "a number is in its range");
  });
  return 0;
}
