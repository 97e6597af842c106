#include "cli/numbers.h"

#include "base/text.h"
#include "cli/complaint.h"

namespace qv5123 {
namespace {

constexpr std::size_t kShown = 40;  // of a word that may be as long as a file

}  // namespace

int number_in(const std::string& name, std::string_view text, int lowest, int highest) {
  const auto value = parse_number(text);
  if (!value) refuse(name + ": \"" + elided(text, kShown) + "\" is no number (0x hex or decimal)");
  if (*value < lowest || *value > highest) {
    refuse(name + ": " + elided(text, kShown) + " is not in " + std::to_string(lowest) + ".." +
           std::to_string(highest));
  }
  return static_cast<int>(*value);
}

double real_number(const std::string& name, std::string_view text) {
  const auto value = parse_real(text);
  if (!value) refuse(name + ": \"" + elided(text, kShown) + "\" is no number");
  return *value;
}

}  // namespace qv5123
