#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "console/image_blocks.h"
#include "console/user_data_image.h"
#include "console/version_box.h"
#include "provision/desk_measurements.h"
#include "registers/register_names.h"

/// What is done to each unit of a lot. A recipe is read and checked whole before any of it is done. It is a
/// TOML file, with the steps in their order:
///
///     name = "Lot 7"
///     records = "lot7.jsonl"
///     description = "regu.xml"
///
///     [[step]]
///     do = "expect"
///     serial = "QV512*"
namespace qv5123 {

/// A file that a recipe names, as it was when the recipe was checked.
struct RecipeFile {
  std::filesystem::path path;  ///< against the working folder
  std::string shown;           ///< as the recipe has it
  std::string sha256;          ///< of what it held, 64 hex digits
  std::string bytes;
};

/// Where the serial numbers of the units come from. Each is used once, whatever becomes of its unit.
struct SerialSource {
  std::filesystem::path list;  ///< one on each line; empty for a counter
  std::vector<std::string> serials;
  std::string prefix;  ///< of a counter's
  long long first = 1;
  int digits = 6;
  std::filesystem::path state;       ///< remembers how many were used
  std::optional<std::size_t> entry;  ///< of the user data, the first of as many as it has characters
};

struct Bounds {
  std::optional<double> least;
  std::optional<double> most;
  bool hold(double value) const { return (!least || value >= *least) && (!most || value <= *most); }
};

struct ExpectStep {
  std::map<int, VersionNumbers> versions;  ///< by slot
  std::string serial;                      ///< pattern: '*' stands for any text, '?' for a character
  std::string console;                     ///< a text that the chip says
};
struct ImageStep {
  TransferKind kind = TransferKind::firmware;
  RecipeFile file;
  std::string says = "checksum ok";  ///< what the chip says of it; empty for nothing
  int tries = 2;
};
struct SettingsStep {
  RecipeFile file;
  UserDataImage image;  ///< the file's, with the recipe's own numbers
  std::optional<SerialSource> serial;
  std::string says = "checksum ok";
  int tries = 2;
};
struct PagesStep {
  std::vector<std::string> pages;
  int repair = 2;  ///< how often a page that does not agree is saved again
};
struct RegistersStep {
  std::vector<ExpectedRegister> registers;  ///< of whole registers or bits, in order
  bool verify = true;
};
struct CheckStep {
  struct Value {
    std::string page;
    std::size_t field = 0;
    std::string name;
    Bounds bounds;
  };
  std::vector<ExpectedRegister> registers;
  std::vector<Value> values;
};
struct LensStep {
  int screen = 0;
  int ratio = 100;
  std::optional<double> most_ripple;  ///< percent
  Doubtful doubtful = Doubtful::refuse;
  bool save = true;
};
struct MatrixStep {
  ChartPlace place{};
  int ratio = 100;
  int light = 0;
  int mode = 0;
  std::optional<double> most_mean;  ///< CIEDE2000 after the fit
  std::optional<double> most_worst;
  Doubtful doubtful = Doubtful::refuse;
  bool save = true;
};
struct ReportStep {
  std::string file;  ///< with {serial}, {port} and {unit}
  std::filesystem::path folder;
};
struct FactoryCopyStep {};

using StepWork = std::variant<ExpectStep, ImageStep, SettingsStep, PagesStep, RegistersStep, CheckStep,
                              LensStep, MatrixStep, ReportStep, FactoryCopyStep>;

struct Step {
  std::string name;  ///< what it does, or what the recipe calls it
  std::chrono::milliseconds wait_before{0};
  StepWork work;
};

struct Recipe {
  std::string name;
  std::filesystem::path path;
  std::string sha256;
  std::filesystem::path records;  ///< empty where the recipe names none
  std::vector<Step> steps;
  std::map<std::string, std::string>
      files;  ///< the SHA-256 of each file that was read, by its name in the recipe
};

/// What reading a recipe came to.
struct ReadRecipe {
  Recipe recipe;
  std::string problem;  ///< "lot7.toml, line 12, step 3, file: ..."; empty when all is well
};

/// Reads the recipe and every file that it names.
ReadRecipe read_recipe(const std::filesystem::path& path);
/// The same of a recipe's text, which would stand at `path`.
ReadRecipe parse_recipe(std::string_view text, const std::filesystem::path& path);

/// About how long the step takes at 19200 baud; for a bar, not for a wait.
std::chrono::milliseconds expected_time(const Step& step);

}  // namespace qv5123
