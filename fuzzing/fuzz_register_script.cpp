// The ISP tune page's register script, "AAA,DD".
#include <memory>
#include <sstream>

#include "fuzz_input.h"
#include "tuning/register_script.h"

using namespace qv5123;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  RegisterScript script(std::make_unique<std::istringstream>(std::string(fuzz::text_of({data, size}))));
  // At most a line for each character, one that is repeated at the end, and the end.
  for (std::size_t ticks = 0; ticks < size + 2; ++ticks) {
    const auto step = script.tick();
    for (const RegisterWrite& write : step.batch) (void)frame(write);
    if (step.finished) return 0;
  }
  fuzz::require(false, "a script comes to its end");
  return 0;
}
