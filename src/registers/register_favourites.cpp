#include "registers/register_favourites.h"

#include <algorithm>

#include "base/text.h"

namespace qv5123 {

std::string RegisterFavourites::key_of(const RegEntry& entry) {
  std::string name = utf8(entry.name);
  std::ranges::replace(name, '\n', ' ');
  return hex(static_cast<unsigned>(std::max(entry.address, 0)), 4) + " " + name;
}

void RegisterFavourites::mark(const RegEntry& entry, bool on) {
  if (on) {
    marked_.insert(key_of(entry));
  } else {
    marked_.erase(key_of(entry));
  }
}

std::string RegisterFavourites::text() const {
  std::string text;
  for (const std::string& key : marked_) text += (text.empty() ? "" : "\n") + key;
  return text;
}

void RegisterFavourites::take(std::string_view text) {
  marked_.clear();
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (end > 0) marked_.emplace(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace qv5123
