#include "tuning/field.h"

#include <algorithm>

#include "base/hex.h"

namespace qv5123 {
namespace {

std::string joined(const Words& words, const char* between, const char* before_number) {
  std::string text;
  for (std::size_t i = 0; i < words.words.size(); ++i) {
    if (*words.words[i] == '\0') continue;
    if (!text.empty()) text += between;
    text += words.words[i];
    if (i == 0 && words.number != Words::kNone) text += before_number + std::to_string(words.number);
  }
  if (words.index != Words::kNone) text += "[" + std::to_string(words.index) + "]";
  return text;
}

unsigned mask_of(FieldSize size) {
  return size == FieldSize::word ? 0xFFFF : size == FieldSize::byte ? 0xFF : 1;
}

int stored(int encoded, FieldSize size) {
  return static_cast<int>(static_cast<unsigned>(encoded) & mask_of(size));
}

}  // namespace

std::string Words::name() const {
  return joined(*this, ".", "");
}

std::string Words::caption() const {
  return joined(*this, " ", " ");
}

std::vector<std::size_t> FieldInfo::entries() const {
  std::vector<std::size_t> all;
  if (entry != kNowhere) all.push_back(static_cast<std::size_t>(entry));
  if (entry != kNowhere && size == FieldSize::word) all.push_back(static_cast<std::size_t>(entry) + 1);
  if (also_entry != kNowhere) all.push_back(static_cast<std::size_t>(also_entry));
  std::sort(all.begin(), all.end());
  return all;
}

std::string FieldInfo::text(int number) const {
  const auto item = static_cast<std::size_t>(number);
  if (format == FieldFormat::list && item < items.size()) return items[item];
  if (format == FieldFormat::hex) return "0x" + upper_hex(static_cast<unsigned>(number));
  return std::to_string(number);
}

int FieldInfo::held_by_chip(int number) const {
  return in_reply().decode(stored(as->encode(number), size));
}

int FieldInfo::held_by_file(int number) const {
  return in_entry().decode(stored(in_entry().encode(number), size));
}

std::string FieldInfo::range_text() const {
  std::string text = std::to_string(range.lowest) + ".." + std::to_string(range.highest);
  if (*unit != '\0') text += std::string(" ") + unit;
  if (address != kNowhere) text += ", register 0x" + upper_hex(static_cast<unsigned>(address));
  return text;
}

}  // namespace qv5123
