#include "state/filter_words.h"

#include <sstream>

#include "base/text.h"

namespace qv5123 {

std::vector<std::string> filter_words(std::string_view text) {
  std::istringstream stream(lower_case(std::string(text)));
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(std::move(word));
  return words;
}

}  // namespace qv5123
