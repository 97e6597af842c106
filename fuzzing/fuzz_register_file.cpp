// The register text file, "0xF800=0x1A //NAME".
#include <string>

#include "fuzz_input.h"
#include "registers/register_file.h"

using namespace qv5123;

namespace {

/// A description of just the registers that the file names, all marked as saved.
RegDescription description_of(const RegisterFile& file) {
  RegDescription description;
  description.categories = {u"all"};
  for (const auto& line : file.lines) {
    RegEntry entry;
    entry.address = line.address;
    entry.write = 'W';
    entry.name = u"N";
    description.registers.push_back(entry);
    if (description.registers.size() == 64) break;
  }
  return description;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RegisterFile file = RegisterFile::parse(fuzz::text_of({data, size}));
  fuzz::require((file.skipped == 0) == (file.first_skipped == 0), "a skipped line has a number");
  for (const auto& line : file.lines) {
    fuzz::require(line.address >= 0 && line.address <= 0xFFFF, "an address has 16 bits");
    fuzz::require(line.value >= 0 && line.value <= 0xFF, "a value is a byte");
  }
  RegDescription description = description_of(file);
  apply_register_file(file, description);
  const RegisterFile again = RegisterFile::parse(register_file_text(description));
  fuzz::require(again.skipped == 0, "every line that is written is read again");
  fuzz::require(again.lines.size() == description.registers.size(), "every register read is written");
  return 0;
}
