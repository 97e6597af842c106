#pragma once

// Problems are told by value and line; nothing here prints documents.
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <optional>
#include <string>
#include <vector>

#include "provision/recipe.h"

namespace qv5123 {

/// Thrown by what reads a recipe, and caught by read_recipe().
struct RecipeProblem {
  std::string text;
};

/// A table of a recipe. What is wrong with a key of it is a RecipeProblem that names line and key.
class RecipeTable {
 public:
  /// `place` is what problems call the table, such as "step 3"; may be empty.
  RecipeTable(const toml::table& table, std::string place, std::filesystem::path folder)
      : table_(table), place_(std::move(place)), folder_(std::move(folder)) {}

  using Keys = std::vector<std::string_view>;
  static constexpr double kLargest = 1e9;

  bool has(std::string_view key) const { return table_.contains(key); }
  /// Where relative paths begin.
  const std::filesystem::path& folder() const { return folder_; }

  std::string text(std::string_view key);
  std::string text(std::string_view key, std::string otherwise);
  long long whole(std::string_view key, long long lowest, long long highest);
  int whole(std::string_view key, int lowest, int highest, int otherwise);
  /// At most kLargest.
  std::optional<double> real(std::string_view key, double lowest);
  bool flag(std::string_view key, bool otherwise);
  std::vector<std::string> texts(std::string_view key);
  /// A path as it stands, against the recipe's folder.
  std::filesystem::path path(std::string_view key);
  /// The file of "file", held to "sha256" where that is given.
  RecipeFile file();
  /// A table below; nothing where there is none.
  std::optional<RecipeTable> table(std::string_view key);
  const toml::node* node(std::string_view key) const { return table_.get(key); }
  /// All keys, in the order of the file.
  std::vector<std::string> keys() const;

  /// A key that is none of these is a problem. Said first, so that no other hides it.
  void allow(const Keys& known, const Keys& more = {}) const;
  [[noreturn]] void refuse(std::string_view key, const std::string& what) const;

 private:
  template <class T>
  std::optional<T> value(std::string_view key, const char* kind);

  const toml::table& table_;
  std::string place_;
  std::filesystem::path folder_;
};

/// One element of "step".
Step read_step(RecipeTable& table, const RegDescription* description);

}  // namespace qv5123
