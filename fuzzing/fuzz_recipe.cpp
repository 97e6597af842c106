// The recipe of a production line, in TOML.
#include <string>

#include "fuzz_input.h"
#include "provision/recipe.h"

using namespace qv5123;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The files that it may name are not there.
  const ReadRecipe read = parse_recipe(fuzz::text_of({data, size}), "/nowhere/lot.toml");
  if (!read.problem.empty()) {
    fuzz::require(read.problem.starts_with("/nowhere/lot.toml, line "), "what is wrong has a line");
    return 0;
  }
  fuzz::require(!read.recipe.steps.empty(), "a recipe does something");
  for (const Step& step : read.recipe.steps) {
    fuzz::require(step.wait_before.count() >= 0, "no wait is upside down");
    fuzz::require(expected_time(step) >= step.wait_before, "a step takes its time");
  }
  return 0;
}
