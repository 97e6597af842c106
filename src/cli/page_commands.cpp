#include <memory>
#include <utility>
#include <vector>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/page_reading.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

struct PageOptions {
  std::vector<std::string> names;  ///< of pages, at least one
  std::filesystem::path file;
  bool verify = false;
  int repair = 0;
  bool lenient = false;
};

using Numbers = std::vector<int>;

/// What came of one page, as JSON and as text.
struct PageResult {
  Json json;
  std::string text;
  bool negative = false;
};

/// What one page gives, alone; what several give, as an array.
ExitCode show_results(Output& out, const std::vector<PageResult>& results) {
  Json pages = Json::array();
  std::string text;
  bool negative = false;
  for (const PageResult& result : results) {
    pages.push_back(result.json);
    text += result.text;
    negative = negative || result.negative;
  }
  out.result(results.size() == 1 ? pages[0] : Json{{"pages", pages}}, text);
  return negative ? ExitCode::negative : ExitCode::done;
}

PageResult shown(const TuningModel& page) {
  PageResult result;
  const Numbers numbers = page.numbers();
  Json values = Json::object();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = page.fields()[i];
    if (!field.has_reply()) continue;
    values[full_name(page, field)] = numbers[i];
    result.text += full_name(page, field) + " = " + std::to_string(numbers[i]) + "\n";
  }
  result.json = {{"page", page.texts().name}, {"values", values}};
  return result;
}

Task<ExitCode> show(Chip& chip, const PageOptions& options) {
  std::vector<PageResult> results;
  for (const std::string& name : options.names) {
    const std::unique_ptr<TuningModel> page = make_model(name);
    co_await read_page(chip, *page);
    results.push_back(shown(*page));
  }
  co_return show_results(chip.out(), results);
}

bool is_in_both(const FieldInfo& field) {
  return field.has_reply() && field.has_entry();
}

Compared compare(const TuningModel& chip, const Numbers& file) {
  Compared result{"chip", "file"};
  const Numbers on_chip = chip.numbers();
  for (std::size_t i = 0; i < on_chip.size(); ++i)
    if (is_in_both(chip.fields()[i])) result.add(full_name(chip, chip.fields()[i]), on_chip[i], file[i]);
  return result;
}

/// Registers of the page that the chip does not report or no file keeps: nobody knows whether they are the
/// same.
Json not_compared(const TuningModel& page) {
  Json names = Json::array();
  for (const FieldInfo& field : page.fields())
    if (!is_in_both(field) && field.address != Field::kNowhere) names.push_back(full_name(page, field));
  return names;
}

std::string listed(const Json& names) {
  std::string text;
  for (const Json& name : names) text += (text.empty() ? "" : ", ") + name.get<std::string>();
  return text;
}

void say_not_compared(Output& out, const TuningModel& page) {
  const Json names = not_compared(page);
  if (!names.empty())
    out.remark(std::string(page.texts().name) +
               ": not compared, since the chip or the file does not tell: " + listed(names) + "\n");
}

PageResult compared(Output& out, const TuningModel& page, const Numbers& file) {
  const Compared comparison = compare(page, file);
  PageResult result;
  result.json = {{"page", page.texts().name},
                 {"compared", comparison.compared},
                 {"differences", comparison.differences},
                 {"not_compared", not_compared(page)}};
  result.text = comparison.text;
  result.negative = !comparison.differences.empty();
  if (!result.negative)
    out.remark(std::string(page.texts().name) + ": equal, " + std::to_string(comparison.compared) +
               " values compared\n");
  say_not_compared(out, page);
  return result;
}

Task<ExitCode> diff(Chip& chip, const PageOptions& options, const UserDataImage& image) {
  std::vector<PageResult> results;
  for (const std::string& name : options.names) {
    const std::unique_ptr<TuningModel> page = make_model(name);
    page->load_all(image);
    const Numbers in_file = page->numbers();
    const std::unique_ptr<TuningModel> on_chip = make_model(name);
    co_await read_page(chip, *on_chip);
    results.push_back(compared(chip.out(), *on_chip, in_file));
  }
  co_return show_results(chip.out(), results);
}

Task<> send_save(Chip& chip, UnattendedHost& host, TuningDesk& desk, FullSave save) {
  // What follows the save on the chip is still done when the save is given up. While the chip stores there is
  // nothing to give up.
  chip.on_interrupt(
      [&chip] { chip.link().jobs_waiting() > 0 ? chip.link().cancel_running_job() : chip.stop(); });
  const bool saved = co_await desk.send_save(std::move(save), std::string());
  chip.on_interrupt({});
  if (chip.interrupted()) {
    throw Complaint{ExitCode::negative, saved ? "Interrupted: the page was saved"
                                              : "Interrupted: the chip has only a part of the page"};
  }
  if (!saved) throw Complaint{ExitCode::port_failed, host.last_failure()};
  // What comes after the save has not ended well.
  if (!host.last_failure().empty()) chip.out().warning(host.last_failure());
}

Task<PageResult> verify(Chip& chip, TuningDesk& desk, int repairs, Json json) {
  const std::string name = desk.model().texts().name;
  const ReadBack how{
      [&] { return desk.verify_save(chip.timeout()); },
      [&](Verification found) { return desk.repair_save(std::move(found), 1, chip.timeout()); }};
  const Verification found = co_await read_back(chip, desk.model(), how, repairs);
  Compared compared{"chip", "file"};
  add_differences(desk.model(), found, compared);
  json["verified"] = compared.compared;
  json["differences"] = compared.differences;
  PageResult result;
  result.text = compared.text;
  result.json = std::move(json);
  result.negative = !found.differences.empty();
  if (!result.negative) chip.out().remark(name + ": " + read_back_text(found.reported));
  say_not_compared(chip.out(), desk.model());
  co_return result;
}

Task<PageResult> save_page(Chip& chip, CQV5123Doc& document, const std::string& name,
                           const PageOptions& options) {
  UnattendedHost host = host_on(chip);
  const std::unique_ptr<TuningDesk> desk = make_desk(name, host, document);
  desk->model().load_all(document.user_data);
  FullSave save = desk->full_save();
  for (const std::string& warning : save.corrections) chip.out().warning(warning);
  Json json = {{"page", name}, {"sent", save.traffic.size()}};
  chip.out().remark(name + ": saving, " + std::to_string(save.traffic.size()) + " flushes\n");
  co_await send_save(chip, host, *desk, std::move(save));
  if (options.verify || options.repair > 0)
    co_return co_await verify(chip, *desk, options.repair, std::move(json));
  PageResult result;
  result.json = std::move(json);
  co_return result;
}

Task<ExitCode> save(Chip& chip, CQV5123Doc& document, const PageOptions& options) {
  std::vector<PageResult> results;
  for (const std::string& name : options.names) {
    PageResult result = co_await save_page(chip, document, name, options);
    results.push_back(std::move(result));
  }
  co_return show_results(chip.out(), results);
}

ExitCode run_show(Context& context, const PageOptions& options) {
  return run_on_chip(context, [&](Chip& chip) { return show(chip, options); });
}

ExitCode run_save(Context& context, const PageOptions& options) {
  CQV5123Doc document;
  document.user_data = read_whole_settings(options.file, options.lenient);
  document.user_data.mark_loaded();
  return run_on_chip(context, [&](Chip& chip) { return save(chip, document, options); });
}

ExitCode run_diff(Context& context, const PageOptions& options) {
  const UserDataImage image = read_whole_settings(options.file, options.lenient);
  return run_on_chip(context, [&](Chip& chip) { return diff(chip, options, image); });
}

void declare_name(CLI::App& command, PageOptions& options) {
  const auto take = [&options](const std::string& name) { options.names = pages_named({name}); };
  command.add_option_function<std::string>("NAME", take, "One of " + page_names() + ", or all")
      ->type_name("")
      ->required();
}

void declare_save(CLI::App& command, PageOptions& options) {
  declare_name(command, options);
  add_path(command, "--from", options.file, "The setting file to take the values from")->required();
  command.add_flag("--verify", options.verify, "Read the page back afterwards and compare");
  add_number(command, "--repair", options.repair, 0, 100, kRepairHelp);
  add_lenient(command, options.lenient);
}

void declare_diff(CLI::App& command, PageOptions& options) {
  declare_name(command, options);
  add_path(command, "FILE", options.file, "A setting file")->required();
  add_lenient(command, options.lenient);
}

}  // namespace

void add_page_commands(CLI::App& app, Context& context) {
  CLI::App* page = add_group(app, "page", "The tuning pages: " + page_names());
  add_command<PageOptions>(*page, context, "show", "Read a page back from the chip and print its values",
                           declare_name, run_show);
  add_command<PageOptions>(*page, context, "save", "Save a page on the chip, as a setting file has it",
                           declare_save, run_save);
  add_command<PageOptions>(*page, context, "diff", "Compare a page on the chip with a setting file",
                           declare_diff, run_diff);
}

}  // namespace qv5123
