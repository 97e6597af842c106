#include <algorithm>
#include <utility>

#include "base/atomic_file.h"
#include "base/text.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/page_reading.h"
#include "cli/parameters.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

struct ParamOptions {
  std::vector<std::string> names;
  std::filesystem::path file;
  std::filesystem::path other;
  bool verify = false;
  int repair = 0;
  bool lenient = false;

  bool verifies() const { return verify || repair > 0; }
};

using Numbers = std::vector<int>;

/// Leaves only what `has` is true of. A value that was named by itself and is not among it is a Complaint.
void keep_only(std::vector<PageParameters>& pages, const std::vector<std::string>& names,
               bool (*has)(const FieldInfo&), const std::string& why_not) {
  for (PageParameters& page : pages) {
    std::erase_if(page.fields, [&](std::size_t i) {
      if (has(page.field(i))) return false;
      if (std::find(names.begin(), names.end(), page.name(i)) != names.end()) refuse(page.name(i) + why_not);
      return true;
    });
  }
  std::erase_if(pages, [](const PageParameters& page) { return page.fields.empty(); });
}

bool is_reported(const FieldInfo& field) {
  return field.has_reply();
}
bool is_in_files(const FieldInfo& field) {
  return field.has_entry();
}
bool is_in_both(const FieldInfo& field) {
  return field.has_reply() && field.has_entry();
}
bool has_control(const FieldInfo& field) {
  return field.sent_by != Field::kNowhere;
}

constexpr const char* kNotReported = ": the chip does not report it";
constexpr const char* kInNoFile = ": no setting file holds it";
constexpr const char* kNoControl = ": nothing sends it alone; \"page save\" sends the whole page";

// list

Json list_json(const PageParameters& page, std::size_t i) {
  const FieldInfo& field = page.field(i);
  Json json{{"name", page.name(i)},          {"caption", field.caption.caption()},
            {"lowest", field.range.lowest},  {"highest", field.range.highest},
            {"reported", field.has_reply()}, {"entries", field.entries()}};
  json["register"] = field.address == Field::kNowhere ? Json() : Json(field.address);
  for (const char* item : field.items) json["items"].push_back(item);
  return json;
}

std::string list_text(const PageParameters& page, std::size_t i) {
  const FieldInfo& field = page.field(i);
  std::string text = page.name(i) + ": " + field.caption.caption() + ", " + field.range_text();
  if (!field.has_entry()) text += ", in no file";
  if (!field.has_reply()) text += ", not reported";
  return text + "\n";
}

ExitCode list(Context& context, const ParamOptions& options) {
  Json json = Json::array();
  std::string text;
  for (const PageParameters& page : find_parameters(options.names)) {
    for (const std::size_t i : page.fields) {
      json.push_back(list_json(page, i));
      text += list_text(page, i);
    }
  }
  context.out.result(json, text);
  return ExitCode::done;
}

// get

void add_values(const PageParameters& page, Json& values, std::string& text) {
  const Numbers numbers = page.page->numbers();
  for (const std::size_t i : page.fields) {
    values[page.name(i)] = numbers[i];
    text += page.name(i) + " = " + std::to_string(numbers[i]) + "\n";
  }
}

void tell_values(Output& out, const std::vector<PageParameters>& pages) {
  Json values = Json::object();
  std::string text;
  for (const PageParameters& page : pages) add_values(page, values, text);
  out.result({{"values", values}}, text);
}

Task<ExitCode> get_from_chip(Chip& chip, const std::vector<PageParameters>& pages) {
  for (const PageParameters& page : pages) co_await read_page(chip, *page.page);
  tell_values(chip.out(), pages);
  co_return ExitCode::done;
}

ExitCode get(Context& context, const ParamOptions& options) {
  std::vector<PageParameters> pages = find_parameters(options.names);
  if (options.file.empty()) {
    keep_only(pages, options.names, is_reported, kNotReported);
    return run_on_chip(context, [&](Chip& chip) { return get_from_chip(chip, pages); });
  }
  keep_only(pages, options.names, is_in_files, kInNoFile);
  const UserDataImage image = read_settings(context.out, options.file);
  for (const PageParameters& page : pages) page.page->load_all(image);
  tell_values(context.out, pages);
  return ExitCode::done;
}

// set

struct Assigned {
  std::vector<Assignment> assignments;
  std::vector<PageParameters> pages;
};

Assigned read_assignments(const std::vector<std::string>& texts, bool (*has)(const FieldInfo&),
                          const std::string& why_not) {
  Assigned assigned;
  std::vector<std::string> names;
  for (const std::string& text : texts) assigned.assignments.push_back(read_assignment(text));
  for (const Assignment& assignment : assigned.assignments) names.push_back(assignment.pattern);
  assigned.pages = find_parameters(names);
  keep_only(assigned.pages, names, has, why_not);
  if (assigned.pages.empty()) refuse("Of none of these values" + why_not.substr(1));
  return assigned;
}

std::size_t count_of(const std::vector<PageParameters>& pages) {
  std::size_t count = 0;
  for (const PageParameters& page : pages) count += page.fields.size();
  return count;
}

ExitCode set_in_file(Context& context, const ParamOptions& options) {
  const Assigned assigned = read_assignments(options.names, is_in_files, kInNoFile);
  const FileLock lock = lock_for_change(options.file);
  UserDataImage image = read_whole_settings(options.file, options.lenient);
  for (const PageParameters& page : assigned.pages) {
    page.page->load_all(image);
    for (const Assignment& assignment : assigned.assignments) assign(assignment, page, *page.page);
    for (const std::size_t i : page.fields) page.page->store_field(i, image);
  }
  write_file(options.file, setting_text(image));
  context.out.result(Json{{"file", path_text(options.file)}, {"set", count_of(assigned.pages)}});
  return ExitCode::done;
}

/// A page with the assigned values in it, for as long as they are sent and read back.
struct PageSetting {
  explicit PageSetting(Chip& chip) : host(host_on(chip)) {}

  UnattendedHost host;
  CQV5123Doc document;
  std::unique_ptr<TuningDesk> desk;
  std::vector<std::size_t> fields;  ///< those that were assigned

  /// What their controls send, each control once.
  Traffic traffic() const { return desk->own_traffic(fields); }
};
using PageSettings = std::vector<std::unique_ptr<PageSetting>>;

/// `base` has what the chip does not report.
std::unique_ptr<PageSetting> setting_of(Chip& chip, const Assigned& assigned, const PageParameters& page,
                                        const std::string& reply, const UserDataImage& base) {
  auto setting = std::make_unique<PageSetting>(chip);
  setting->document.user_data = base;
  setting->document.user_data.mark_loaded();
  setting->desk = make_desk(page.page->texts().name, setting->host, setting->document);
  setting->fields = page.fields;
  TuningModel& model = setting->desk->model();
  model.load_all(setting->document.user_data);
  model.take_reply(reply);
  for (const Assignment& assignment : assigned.assignments) assign(assignment, page, model);
  return setting;
}

UserDataImage image_full_of(int byte) {
  UserDataImage image;
  for (std::size_t entry = 0; entry < UserDataImage::kSize; ++entry) image.set_entry(entry, byte);
  return image;
}

/// A control may send values beside its own, of which the chip has told nothing.
std::unique_ptr<PageSetting> setting_without_base(Chip& chip, const Assigned& assigned,
                                                  const PageParameters& page, const std::string& reply) {
  auto setting = setting_of(chip, assigned, page, reply, image_full_of(0));
  if (setting->traffic() != setting_of(chip, assigned, page, reply, image_full_of(0xFF))->traffic())
    refuse(
        page.name(page.fields.front()) +
        ": its control also sends what the chip does not report; --base FILE says where to take that from");
  return setting;
}

/// What is sent beside the assigned values is the chip's: a digit that the line has spoilt must not come back
/// to it.
Task<std::unique_ptr<PageSetting>> page_setting(Chip& chip, const ParamOptions& options,
                                                const Assigned& assigned, const PageParameters& page) {
  const std::string reply = co_await read_page_surely(chip, *page.page);
  if (options.other.empty()) co_return setting_without_base(chip, assigned, page, reply);
  const UserDataImage base = read_whole_settings(options.other, options.lenient);
  co_return setting_of(chip, assigned, page, reply, base);
}

bool any_reported(const Assigned& assigned) {
  return std::ranges::any_of(assigned.pages, [](const PageParameters& page) {
    return std::ranges::any_of(page.fields, [&page](std::size_t i) { return page.field(i).has_reply(); });
  });
}

Task<Verification> send_again(Chip& chip, PageSetting& setting, TuningModel& on_chip,
                              const std::vector<WriteNote::Value>& values, Verification found) {
  co_await chip.send(setting.desk->own_traffic(found.to_repair()));
  co_return co_await verify_page(chip.link(), on_chip, values, chip.timeout());
}

/// With what was sent beside the assigned values.
Task<Verification> verify_setting(Chip& chip, PageSetting& setting, int repairs) {
  const TuningModel& page = setting.desk->model();
  const std::unique_ptr<TuningModel> on_chip = make_model(page.texts().name);
  const std::vector<WriteNote::Value> values = setting.desk->own_values(setting.fields);
  const ReadBack how{
      [&] { return verify_page(chip.link(), *on_chip, values, chip.timeout()); },
      [&](Verification found) { return send_again(chip, setting, *on_chip, values, std::move(found)); }};
  co_return co_await read_back(chip, page, how, repairs);
}

Task<ExitCode> verify(Chip& chip, const ParamOptions& options, const PageSettings& settings, Json json) {
  Compared result{"chip", "set"};
  std::size_t silent = 0;
  for (const std::unique_ptr<PageSetting>& setting : settings) {
    const Verification found = co_await verify_setting(chip, *setting, options.repair);
    add_differences(setting->desk->model(), found, result);
    silent += found.sent - found.reported;
  }
  json["verified"] = result.compared;
  json["not_reported"] = silent;
  json["differences"] = result.differences;
  chip.out().result(json, result.text);
  if (silent > 0) chip.out().remark(counted(silent, "value") + " not reported by the chip\n");
  if (!result.differences.empty()) co_return ExitCode::negative;
  chip.out().remark(read_back_text(result.compared));
  co_return ExitCode::done;
}

Task<ExitCode> set_on_chip(Chip& chip, const ParamOptions& options, const Assigned& assigned) {
  PageSettings settings;
  Traffic traffic;
  for (const PageParameters& page : assigned.pages) {
    std::unique_ptr<PageSetting> setting = co_await page_setting(chip, options, assigned, page);
    append(traffic, setting->traffic());
    settings.push_back(std::move(setting));
  }
  const std::size_t flushes = traffic.size();
  co_await chip.send(std::move(traffic));
  const Json json{{"set", count_of(assigned.pages)}, {"sent", flushes}};
  if (options.verifies()) co_return co_await verify(chip, options, settings, json);
  chip.out().result(json);
  co_return ExitCode::done;
}

ExitCode set(Context& context, const ParamOptions& options) {
  if (!options.file.empty()) return set_in_file(context, options);
  const Assigned assigned = read_assignments(options.names, has_control, kNoControl);
  if (options.verifies() && !any_reported(assigned))
    refuse("--verify: the chip reports none of these values");
  return run_on_chip(context, [&](Chip& chip) { return set_on_chip(chip, options, assigned); });
}

// diff

ExitCode tell_differences(Output& out, const std::vector<PageParameters>& pages,
                          const std::vector<Numbers>& file, const char* one, const char* other) {
  Compared result{one, other};
  for (std::size_t p = 0; p < pages.size(); ++p) {
    const Numbers numbers = pages[p].page->numbers();
    for (const std::size_t i : pages[p].fields) result.add(pages[p].name(i), numbers[i], file[p][i]);
  }
  out.result({{"compared", result.compared}, {"differences", result.differences}}, result.text);
  return result.differences.empty() ? ExitCode::done : ExitCode::negative;
}

std::vector<Numbers> numbers_in(const UserDataImage& image, const std::vector<PageParameters>& pages) {
  std::vector<Numbers> numbers;
  for (const PageParameters& page : pages) {
    const auto model = make_model(page.page->texts().name);
    model->load_all(image);
    numbers.push_back(model->numbers());
  }
  return numbers;
}

Task<ExitCode> diff_with_chip(Chip& chip, const std::vector<PageParameters>& pages,
                              const std::vector<Numbers>& file) {
  for (const PageParameters& page : pages) co_await read_page(chip, *page.page);
  co_return tell_differences(chip.out(), pages, file, "chip", "file");
}

ExitCode diff(Context& context, const ParamOptions& options) {
  std::vector<PageParameters> pages = find_parameters(options.names);
  const UserDataImage image = read_whole_settings(options.file, options.lenient);
  if (options.other.empty()) {
    keep_only(pages, options.names, is_in_both, ": file and chip do not both have it");
    const std::vector<Numbers> file = numbers_in(image, pages);
    return run_on_chip(context, [&](Chip& chip) { return diff_with_chip(chip, pages, file); });
  }
  keep_only(pages, options.names, is_in_files, kInNoFile);
  const UserDataImage other = read_whole_settings(options.other, options.lenient);
  for (const PageParameters& page : pages) page.page->load_all(image);
  return tell_differences(context.out, pages, numbers_in(other, pages), "a", "b");
}

constexpr const char* kNames = "Names, beginnings of names, or names with * and ?; without, all";

void declare_list(CLI::App& command, ParamOptions& options) {
  command.add_option("NAME", options.names, kNames)->type_name("");
}

void declare_get(CLI::App& command, ParamOptions& options) {
  declare_list(command, options);
  add_path(command, "--from", options.file, "Take them from this setting file, not from the chip");
}

void declare_set(CLI::App& command, ParamOptions& options) {
  command.add_option("NAME=VALUE", options.names, "A name, also with * and ?, and a number")
      ->type_name("")
      ->required();
  add_path(command, "--to", options.file, "Change this setting file, not the chip");
  add_path(command, "--base", options.other, "Where to take from what is sent beside and not reported");
  command.add_flag("--verify", options.verify, "Read back from the chip afterwards and compare");
  add_number(command, "--repair", options.repair, 0, 100, kRepairHelp);
  add_lenient(command, options.lenient);
}

void declare_diff(CLI::App& command, ParamOptions& options) {
  add_path(command, "FILE", options.file, "A setting file")->required();
  declare_list(command, options);
  add_path(command, "--with", options.other, "Compare with this setting file, not with the chip");
  add_lenient(command, options.lenient);
}

}  // namespace

void add_param_commands(CLI::App& app, Context& context) {
  CLI::App* param = add_group(app, "param", "Values of the tuning pages by name, on the chip or in a file");
  add_command<ParamOptions>(*param, context, "list", "Print names, ranges and registers", declare_list, list);
  add_command<ParamOptions>(*param, context, "get", "Print values", declare_get, get);
  add_command<ParamOptions>(*param, context, "set", "Change values, each as its page's own control sends it",
                            declare_set, set);
  add_command<ParamOptions>(*param, context, "diff", "Compare the chip with a setting file, or two files",
                            declare_diff, diff);
}

}  // namespace qv5123
