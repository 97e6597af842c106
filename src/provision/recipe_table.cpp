#include "provision/recipe_table.h"

#include <algorithm>

#include "base/atomic_file.h"
#include "base/sha256.h"
#include "base/text.h"

namespace qv5123 {
namespace {

std::filesystem::path path_of(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

}  // namespace

void RecipeTable::refuse(std::string_view key, const std::string& what) const {
  const auto found = table_.find(key);
  const auto line = found == table_.end() ? table_.source().begin.line : found->first.source().begin.line;
  const std::string place =
      place_.empty() || key.empty() ? place_ + std::string(key) : place_ + ", " + std::string(key);
  throw RecipeProblem{"line " + std::to_string(line) + ", " + place + ": " + what};
}

template <class T>
std::optional<T> RecipeTable::value(std::string_view key, const char* kind) {
  const toml::node* found = node(key);
  if (!found) return std::nullopt;
  const auto value = found->value_exact<T>();
  if (!value) refuse(key, std::string("is not ") + kind);
  return value;
}

std::string RecipeTable::text(std::string_view key, std::string otherwise) {
  return value<std::string>(key, "a text").value_or(std::move(otherwise));
}

std::string RecipeTable::text(std::string_view key) {
  const auto text = value<std::string>(key, "a text");
  if (!text) refuse(key, "is missing");
  if (text->empty()) refuse(key, "is empty");
  return *text;
}

long long RecipeTable::whole(std::string_view key, long long lowest, long long highest) {
  const auto number = value<std::int64_t>(key, "a whole number");
  if (!number) refuse(key, "is missing");
  if (*number < lowest || *number > highest)
    refuse(key,
           std::to_string(*number) + " is not in " + std::to_string(lowest) + ".." + std::to_string(highest));
  return *number;
}

int RecipeTable::whole(std::string_view key, int lowest, int highest, int otherwise) {
  return has(key) ? static_cast<int>(whole(key, static_cast<long long>(lowest), highest)) : otherwise;
}

std::optional<double> RecipeTable::real(std::string_view key, double lowest) {
  const toml::node* found = node(key);
  if (!found) return std::nullopt;
  const auto number = found->is_number() ? found->value<double>() : std::nullopt;
  if (!number || !std::isfinite(*number)) refuse(key, "is not a number");
  if (*number < lowest) refuse(key, shortest(*number) + " is below " + shortest(lowest));
  if (*number > kLargest) refuse(key, shortest(*number) + " is beyond " + shortest(kLargest));
  return number;
}

bool RecipeTable::flag(std::string_view key, bool otherwise) {
  return value<bool>(key, "true or false").value_or(otherwise);
}

std::vector<std::string> RecipeTable::texts(std::string_view key) {
  const toml::node* found = node(key);
  if (!found) return {};
  std::vector<std::string> texts;
  if (const auto* array = found->as_array()) {
    for (const toml::node& element : *array) {
      const auto text = element.value_exact<std::string>();
      if (!text) refuse(key, "is not a list of texts");
      texts.push_back(*text);
    }
    return texts;
  }
  return {text(key)};
}

std::filesystem::path RecipeTable::path(std::string_view key) {
  return folder_ / path_of(text(key));
}

RecipeFile RecipeTable::read(std::string_view key, std::uintmax_t limit) {
  RecipeFile file;
  file.shown = text(key);
  file.path = path(key);
  const FileResult result = read_whole_file(file.path, file.bytes, limit);
  if (!result.ok()) refuse(key, result.text);
  file.sha256 = sha256(file.bytes);
  recipe_.files[file.shown] = file.sha256;
  return file;
}

RecipeFile RecipeTable::file() {
  RecipeFile file = read("file", kLargestFile);
  std::string wanted = text("sha256", file.sha256);
  std::ranges::transform(wanted, wanted.begin(),
                         [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c; });
  if (wanted != file.sha256) refuse("sha256", file.shown + " has " + file.sha256);
  return file;
}

std::optional<RecipeTable> RecipeTable::table(std::string_view key) {
  const toml::node* found = node(key);
  if (!found) return std::nullopt;
  if (!found->is_table()) refuse(key, "is not a table");
  const std::string place = place_.empty() ? std::string(key) : place_ + ", " + std::string(key);
  return RecipeTable(*found->as_table(), place, recipe_);
}

std::vector<std::string> RecipeTable::keys() const {
  std::vector<std::pair<toml::source_position, std::string>> keys;
  for (const auto& [key, node] : table_) keys.emplace_back(key.source().begin, key.str());
  std::ranges::sort(keys, [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  names.reserve(keys.size());
  for (auto& [position, name] : keys) names.push_back(std::move(name));
  return names;
}

void RecipeTable::allow(const Keys& known, const Keys& more) const {
  for (const std::string& key : keys())
    if (std::ranges::count(known, key) + std::ranges::count(more, key) == 0)
      refuse(key, "no such key is known here");
}

}  // namespace qv5123
