#include <algorithm>
#include <array>

#include "base/text.h"
#include "console/setting_file.h"
#include "console/setting_format.h"
#include "provision/recipe_table.h"
#include "provision/record_book.h"
#include "registers/register_file.h"
#include "tuning/settings_table.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

constexpr int kMostTries = 9;
constexpr std::size_t kLongestSerial = 32;

/// "2.3.7" as three numbers of 0..99.
VersionNumbers version_of(const RecipeTable& table, std::string_view key, const std::string& text) {
  VersionNumbers numbers{};
  std::string_view rest = text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t point = i + 1 < numbers.size() ? rest.find('.') : rest.size();
    const auto number = point == rest.npos ? std::nullopt : parse_number(rest.substr(0, point));
    if (!number || *number < 0 || *number > kVersionNumberMax)
      table.refuse(key, "\"" + text + "\" is not three numbers 0..99 such as \"2.3.7\"");
    numbers[i] = static_cast<int>(*number);
    rest.remove_prefix(std::min(point + 1, rest.size()));
  }
  return numbers;
}

ExpectStep read_expect(RecipeTable& table, const RegDescription*) {
  constexpr std::array kKeys{"hw", "sw", "isp"};
  ExpectStep step;
  for (int slot = 0; slot < kVersionSlots; ++slot) {
    const char* key = kKeys[static_cast<std::size_t>(slot)];
    if (table.has(key)) step.versions[slot] = version_of(table, key, table.text(key));
  }
  step.serial = table.text("serial", "");
  step.console = table.text("console", "");
  if (step.versions.empty() && step.serial.empty() && step.console.empty())
    table.refuse("do", "expects nothing: hw, sw, isp, serial or console say what");
  return step;
}

template <TransferKind kind>
ImageStep read_image(RecipeTable& table, const RegDescription*) {
  ImageStep step;
  step.kind = kind;
  step.file = table.file();
  if (step.file.bytes.empty() || step.file.bytes.size() > kImageFits)
    table.refuse("file", step.file.shown + " has " + std::to_string(step.file.bytes.size()) +
                             " bytes, a download takes 1 to " + std::to_string(kImageFits));
  step.says = table.text("says", step.says);
  step.tries = table.whole("tries", 1, kMostTries, step.tries);
  return step;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    std::string line = text.substr(start, end - start);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    if (!line.empty()) lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

void check_list(const RecipeTable& table, const std::vector<std::string>& serials) {
  std::vector<std::string> sorted = serials;
  std::ranges::sort(sorted);
  const auto twice = std::ranges::adjacent_find(sorted);
  if (twice != sorted.end()) table.refuse("list", "\"" + *twice + "\" is in it twice");
  const auto longest = std::ranges::find_if(serials, [](const auto& s) { return s.size() > kLongestSerial; });
  if (longest != serials.end()) table.refuse("list", "\"" + *longest + "\" is longer than 32 characters");
  if (serials.empty()) table.refuse("list", "holds no serial numbers");
}

/// Of a path that something will be written to.
void check_folder(const RecipeTable& table, std::string_view key, const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  if (!std::filesystem::is_directory(folder, error))
    table.refuse(key, "there is no folder " + path_text(folder));
}

SerialSource read_list(RecipeTable& table) {
  table.allow({"list", "entry"});
  SerialSource source;
  const RecipeFile file = table.read("list", RecipeTable::kLargestFile);
  source.list = file.path;
  source.serials = lines_of(file.bytes);
  check_list(table, source.serials);
  source.state = source.list;
  source.state += ".used";
  return source;
}

SerialSource read_counter(RecipeTable& table) {
  table.allow({"counter", "prefix", "digits", "first", "entry"});
  SerialSource source;
  source.state = table.path("counter");
  check_folder(table, "counter", source.state);
  source.prefix = table.text("prefix", "");
  source.digits = table.whole("digits", 1, 12, source.digits);
  source.first = table.has("first") ? table.whole("first", 0LL, 999'999'999'999LL) : 1;
  if (std::to_string(source.first).size() > static_cast<std::size_t>(source.digits))
    table.refuse("first", std::to_string(source.first) + " has more than " + std::to_string(source.digits) +
                              " digits");
  return source;
}

SerialSource read_serial(RecipeTable table) {
  const char* key = table.has("list") ? "list" : "counter";
  SerialSource source = table.has("list") ? read_list(table) : read_counter(table);
  const TakenSerial next = next_serial(source);
  if (!next.problem.empty()) table.refuse(key, next.problem);
  if (!table.has("entry")) return source;
  constexpr int kLast = static_cast<int>(UserDataImage::kSize) - 1;
  source.entry = static_cast<std::size_t>(table.whole("entry", 0, kLast, 0));
  std::size_t longest = source.list.empty() ? next.serial.size() : 0;
  for (const std::string& serial : source.serials) longest = std::max(longest, serial.size());
  if (*source.entry + longest > UserDataImage::kSize) table.refuse("entry", "its end lies beyond entry 1023");
  return source;
}

void assign(RecipeTable& table, const SettingsTable& settings, const std::string& name,
            UserDataImage& image) {
  const std::vector<Setting> found = settings.find(name);
  if (found.empty()) table.refuse(name, "no setting has this name");
  if (found.size() > 1) table.refuse(name, "stands for " + std::to_string(found.size()) + " settings");
  const int number = static_cast<int>(table.whole(name, -0x8000LL, 0xFFFF));
  found.front().set(image, number);
  const int stored = found.front().get(image);
  if (stored != number)
    table.refuse(
        name, std::to_string(number) + " is beyond its range, it would count as " + std::to_string(stored));
}

SettingsStep read_settings(RecipeTable& table, const RegDescription*) {
  SettingsStep step;
  step.file = table.file();
  const std::string oddity = format_summary(step.file.bytes);
  if (!oddity.empty()) table.refuse("file", step.file.shown + ": " + oddity);
  step.image = image_of(step.file.bytes);
  if (auto set = table.table("set")) {
    const SettingsTable settings;
    for (const std::string& name : set->keys()) assign(*set, settings, name, step.image);
  }
  if (auto serial = table.table("serial")) step.serial = read_serial(std::move(*serial));
  step.says = table.text("says", step.says);
  step.tries = table.whole("tries", 1, kMostTries, step.tries);
  return step;
}

PagesStep read_pages(RecipeTable& table, const RegDescription*) {
  PagesStep step;
  step.pages = table.texts("pages");
  if (step.pages.empty() || step.pages == std::vector<std::string>{"all"})
    step.pages.assign(std::begin(kTuningPages), std::end(kTuningPages));
  for (const std::string& page : step.pages)
    if (!is_page(page))
      table.refuse("pages", "no page is named \"" + page + "\"; the pages are " + page_names());
  step.repair = table.whole("repair", 0, kMostTries, step.repair);
  return step;
}

/// "file" and the table `key`, each optional.
std::vector<ExpectedRegister> read_registers(RecipeTable& table, const char* key,
                                             const RegDescription* description) {
  std::vector<ExpectedRegister> registers;
  if (table.has("file")) {
    const RecipeFile file = table.file();
    auto expected = RegisterExpectations::parse(file.bytes, description);
    if (!expected.problem.empty()) table.refuse("file", file.shown + ", " + expected.problem);
    registers = std::move(expected.registers);
  } else if (table.has("sha256")) {
    table.refuse("sha256", "no \"file\" is named that would have it");
  }
  if (auto below = table.table(key)) {
    if (below->keys().empty()) table.refuse(key, "is empty");
    for (const std::string& name : below->keys()) {
      ExpectedRegister expected;
      const std::string value = std::to_string(below->whole(name, 0LL, 0xFF));
      const std::string problem = expect_register(name, value, description, expected);
      if (!problem.empty()) below->refuse(name, problem);
      registers.push_back(std::move(expected));
    }
  }
  return registers;
}

RegistersStep read_register_writes(RecipeTable& table, const RegDescription* description) {
  RegistersStep step;
  step.registers = read_registers(table, "set", description);
  if (step.registers.empty()) table.refuse("do", "names no register: \"file\" or \"set\" say which");
  step.verify = table.flag("verify", step.verify);
  return step;
}

CheckStep::Value read_value(RecipeTable& table, const std::string& name) {
  CheckStep::Value value;
  value.name = name;
  const std::size_t point = name.find('.');
  value.page = name.substr(0, point);
  if (point == name.npos || !is_page(value.page)) table.refuse(name, "no page has such a value");
  const std::vector<FieldInfo>& fields = make_model(value.page)->fields();
  const auto field = std::ranges::find(fields, name.substr(point + 1), &FieldInfo::name);
  if (field == fields.end() || !field->has_reply()) table.refuse(name, "the chip reports no such value");
  value.field = static_cast<std::size_t>(field - fields.begin());
  if (!table.node(name)->is_table()) {
    constexpr auto kLargest = static_cast<long long>(RecipeTable::kLargest);
    const long long number = table.whole(name, -kLargest, kLargest);
    value.bounds.least = value.bounds.most = static_cast<double>(number);
    return value;
  }
  auto bounds = table.table(name);
  bounds->allow({"least", "most"});
  value.bounds.least = bounds->real("least", -RecipeTable::kLargest);
  value.bounds.most = bounds->real("most", value.bounds.least.value_or(-RecipeTable::kLargest));
  if (!value.bounds.least && !value.bounds.most) table.refuse(name, "says neither \"least\" nor \"most\"");
  return value;
}

CheckStep read_check(RecipeTable& table, const RegDescription* description) {
  CheckStep step;
  step.registers = read_registers(table, "registers", description);
  if (auto values = table.table("values")) {
    if (values->keys().empty()) table.refuse("values", "is empty");
    for (const std::string& name : values->keys()) step.values.push_back(read_value(*values, name));
  }
  if (step.registers.empty() && step.values.empty())
    table.refuse("do", "checks nothing: file, registers or values say what");
  return step;
}

Doubtful doubtful(RecipeTable& table) {
  return table.flag("send_doubtful", false) ? Doubtful::send : Doubtful::refuse;
}

LensStep read_lens(RecipeTable& table, const RegDescription*) {
  LensStep step;
  const int width = table.whole("width", 1, 4096, 1920);
  if (width != 1920 && width != 1280) table.refuse("width", "is 1920 or 1280");
  step.screen = width == 1280 ? 1 : 0;
  step.ratio = table.whole("ratio", 0, 100, step.ratio);
  step.most_ripple = table.real("most_ripple", 0);
  step.doubtful = doubtful(table);
  step.save = table.flag("save", step.save);
  return step;
}

template <std::size_t count>
int choice(RecipeTable& table, const char* key, const std::array<const char*, count>& names) {
  if (!table.has(key)) return 0;
  const std::string name = table.text(key);
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) table.refuse(key, "\"" + name + "\" is none of the page's");
  return static_cast<int>(found - names.begin());
}

/// Nothing for what is not [x, y] within the picture.
std::optional<PickerPosition> position(const toml::node& node) {
  const toml::array* pair = node.as_array();
  if (!pair || pair->size() != 2) return std::nullopt;
  const auto x = pair->get(0)->value_exact<std::int64_t>();
  const auto y = pair->get(1)->value_exact<std::int64_t>();
  if (!x || !y || *x < 0 || *x > kPickerMaximumX || *y < 0 || *y > kPickerMaximumY) return std::nullopt;
  return PickerPosition{static_cast<int>(*x), static_cast<int>(*y)};
}

std::optional<ChartPlace> corners_of(const toml::node& node) {
  ChartPlace place{};
  const toml::array* corners = node.as_array();
  if (!corners || corners->size() != place.size()) return std::nullopt;
  for (std::size_t i = 0; i < place.size(); ++i) {
    const auto corner = position(*corners->get(i));
    if (!corner) return std::nullopt;
    place[i] = *corner;
  }
  return place;
}

ChartPlace chart_at_corners(RecipeTable& table) {
  for (const char* key : {"first", "step"})
    if (table.has(key)) table.refuse(key, "corners say it already");
  const auto place = corners_of(*table.node("corners"));
  if (!place) table.refuse("corners", "is not four [x, y] within the picture");
  if (!is_chart(*place)) table.refuse("corners", "do not go round a chart");
  return *place;
}

/// "corners", or where "first" is and how far the next.
ChartPlace chart_place(RecipeTable& table) {
  if (table.has("corners")) return chart_at_corners(table);
  const toml::node* node = table.node("first");
  const auto first = node ? position(*node) : kFirstPatch;
  if (!first) table.refuse("first", "is not [x, y] within the picture");
  const auto place = straight_chart(*first, table.whole("step", 1, kPickerMaximumX, kPatchStep));
  if (!place) table.refuse("step", "the chart would go beyond the picture");
  return *place;
}

MatrixStep read_matrix(RecipeTable& table, const RegDescription*) {
  MatrixStep step;
  step.place = chart_place(table);
  step.ratio = table.whole("ratio", 0, 100, step.ratio);
  step.light = choice(table, "light", kLightSourceNames);
  step.mode = choice(table, "mode", kVideoModeNames);
  step.most_mean = table.real("most_mean", 0);
  step.most_worst = table.real("most_worst", 0);
  step.doubtful = doubtful(table);
  step.save = table.flag("save", step.save);
  return step;
}

/// As far as it is known before there is a unit.
ReportStep read_report(RecipeTable& table, const RegDescription*) {
  ReportStep step{table.text("file"), table.folder()};
  const std::filesystem::path path = table.path("file");
  if (path_text(path.parent_path()).find('{') == std::string::npos) check_folder(table, "file", path);
  return step;
}

FactoryCopyStep read_factory_copy(RecipeTable&, const RegDescription*) {
  return {};
}

struct StepKind {
  std::string_view name;
  RecipeTable::Keys keys;  ///< beside those of all steps
  StepWork (*read)(RecipeTable&, const RegDescription*);
};

template <auto read>
StepWork work_of(RecipeTable& table, const RegDescription* description) {
  return read(table, description);
}

const StepKind& kind_of(RecipeTable& table, const std::string& what) {
  static const StepKind kKinds[]{
      {"expect", {"hw", "sw", "isp", "serial", "console"}, work_of<read_expect>},
      {"firmware", {"file", "sha256", "says", "tries"}, work_of<read_image<TransferKind::firmware>>},
      {"font", {"file", "sha256", "says", "tries"}, work_of<read_image<TransferKind::font>>},
      {"settings", {"file", "sha256", "says", "tries", "set", "serial"}, work_of<read_settings>},
      {"pages", {"pages", "repair"}, work_of<read_pages>},
      {"registers", {"file", "sha256", "set", "verify"}, work_of<read_register_writes>},
      {"check", {"file", "sha256", "registers", "values"}, work_of<read_check>},
      {"lsc", {"width", "ratio", "most_ripple", "send_doubtful", "save"}, work_of<read_lens>},
      {"matrix",
       {"corners", "first", "step", "ratio", "light", "mode", "most_mean", "most_worst", "send_doubtful",
        "save"},
       work_of<read_matrix>},
      {"report", {"file"}, work_of<read_report>},
      {"factory_copy", {}, work_of<read_factory_copy>},
  };
  const auto found = std::ranges::find(kKinds, what, &StepKind::name);
  if (found != std::end(kKinds)) return *found;
  table.refuse("do",
               "\"" + what +
                   "\" is no step; the steps are expect, firmware, font, settings, pages, registers, check, "
                   "lsc, matrix, report and factory_copy");
}

}  // namespace

Step read_step(RecipeTable& table, const RegDescription* description) {
  Step step;
  const std::string what = table.text("do");
  const StepKind& kind = kind_of(table, what);
  table.allow({"do", "name", "wait"}, kind.keys);
  step.name = table.text("name", what);
  step.wait_before = std::chrono::milliseconds(table.whole("wait", 0, 3'600'000, 0));
  step.work = kind.read(table, description);
  return step;
}

}  // namespace qv5123
