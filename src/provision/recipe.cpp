#include "provision/recipe.h"

#include <algorithm>

#include "base/atomic_file.h"
#include "base/sha256.h"
#include "provision/recipe_table.h"

namespace qv5123 {
namespace {

constexpr std::uintmax_t kLargestRecipe = 1u << 20;

std::optional<RegDescription> read_description(RecipeTable& table) {
  if (!table.has("description")) return std::nullopt;
  const RecipeFile file = table.read("description", RegDescription::kLargest);
  RegDescription description = RegDescription::parse_file(file.bytes, path_text(file.path));
  if (!description.problem.empty()) table.refuse("description", description.problem);
  return description;
}

void check_order(const RecipeTable& step, const std::vector<Step>& steps) {
  if (!std::holds_alternative<PagesStep>(steps.back().work)) return;
  const bool settings =
      std::ranges::any_of(steps, [](const Step& s) { return std::holds_alternative<SettingsStep>(s.work); });
  if (!settings) step.refuse("do", "saves pages, and no settings stand before it");
}

void read_steps(RecipeTable& table, const RegDescription* description, Recipe& recipe) {
  const toml::node* node = table.node("step");
  const toml::array* steps = node ? node->as_array() : nullptr;
  if (!steps || steps->empty() || !steps->is_array_of_tables()) table.refuse("step", "no [[step]] is there");
  for (const toml::node& element : *steps) {
    const std::string place = "step " + std::to_string(recipe.steps.size() + 1);
    RecipeTable step(*element.as_table(), place, recipe);
    recipe.steps.push_back(read_step(step, description));
    check_order(step, recipe.steps);
  }
}

Recipe read_root(const toml::table& root, const std::filesystem::path& path) {
  Recipe recipe;
  recipe.path = path;
  RecipeTable table(root, "", recipe);
  table.allow({"name", "records", "description", "step"});
  recipe.name = table.text("name", path_text(path.stem()));
  if (table.has("records")) recipe.records = table.path("records");
  const std::optional<RegDescription> description = read_description(table);
  read_steps(table, description ? &*description : nullptr, recipe);
  return recipe;
}

std::string parse_problem(const toml::parse_error& error) {
  return "line " + std::to_string(error.source().begin.line) + ": " + std::string(error.description());
}

constexpr bool begins_a_name(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
         c == '"' || c == '\'';
}

/// Where a table's header has no name, of which the parser itself says nothing.
std::string broken_header(std::string_view text) {
  int line = 1;
  for (std::size_t at = 0; at < text.size(); ++line) {
    const std::string_view rest = text.substr(at);
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view header = rest.substr(0, end);
    const std::size_t name = header.find_first_not_of(" \t[");
    const bool is_header = header.substr(0, name).find('[') != std::string_view::npos;
    if (is_header && (name == std::string_view::npos || !begins_a_name(header[name])))
      return "line " + std::to_string(line) + ": a table without a name";
    at += end + 1;
  }
  return "line 1: this is no TOML";
}

}  // namespace

ReadRecipe parse_recipe(std::string_view text, const std::filesystem::path& path) {
  ReadRecipe read;
  try {
    const toml::table root = toml::parse(text);
    read.recipe = read_root(root, path);
    read.recipe.sha256 = sha256(text);
  } catch (const toml::parse_error& error) {
    read.problem = path_text(path) + ", " + parse_problem(error);
  } catch (const BrokenToml&) {
    read.problem = path_text(path) + ", " + broken_header(text);
  } catch (const RecipeProblem& problem) {
    read.problem = path_text(path) + ", " + problem.text;
  }
  return read;
}

ReadRecipe read_recipe(const std::filesystem::path& path) {
  ReadRecipe read;
  std::string text;
  const FileResult result = read_whole_file(path, text, kLargestRecipe);
  if (!result.ok()) {
    read.problem = result.text;
    return read;
  }
  return parse_recipe(text, path);
}

}  // namespace qv5123
