// What an earlier run left of its unsaved values.
#include "console/journal_entry.h"
#include "fuzz_input.h"

using namespace qv5123;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto entry = read_journal(text)) {
    fuzz::require(journal_text(*entry) == text, "what is taken is what was written, to the byte");
  }
  return 0;
}
