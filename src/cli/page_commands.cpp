#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/headless_host.h"
#include "cli/tuning_page.h"
#include "tuning/page_flows.h"

namespace qv5123 {
namespace {

struct PageOptions {
  std::string name;
  std::filesystem::path file;
  bool verify = false;
  bool lenient = false;
};

using Numbers = TuningPage::Numbers;
using ValueFilter = bool (*)(const TuningPage::Value&);

Task<Numbers> read_page(Chip& chip, const TuningPage& page) {
  const std::string reply = co_await chip.ask(page.request(), page.name());
  std::optional<Numbers> numbers = page.from_reply(reply);
  if (!numbers) throw Complaint{kNegative, page.name() + ": the answer is too short"};
  co_return std::move(*numbers);
}

Task<ExitCode> show(Chip& chip, const TuningPage& page) {
  const Numbers numbers = co_await read_page(chip, page);
  Json values = Json::object();
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const TuningPage::Value& value = page.values()[i];
    if (!value.in_reply) continue;
    values[value.name] = numbers[i];
    text += value.name + " = " + std::to_string(numbers[i]) + "\n";
  }
  chip.out().result({{"page", page.name()}, {"values", values}}, text);
  co_return kDone;
}

/// What differs, as JSON, and as lines "awb.a_slope: chip 12, file 20".
struct Comparison {
  std::size_t compared = 0;
  Json differences = Json::array();
  std::string text;
};

Comparison compare(const TuningPage& page, const Numbers& chip, const Numbers& file, ValueFilter counts) {
  Comparison comparison;
  for (std::size_t i = 0; i < chip.size(); ++i) {
    const TuningPage::Value& value = page.values()[i];
    if (!counts(value)) continue;
    ++comparison.compared;
    if (chip[i] == file[i]) continue;
    comparison.differences.push_back({{"name", value.name}, {"chip", chip[i]}, {"file", file[i]}});
    comparison.text +=
        value.name + ": chip " + std::to_string(chip[i]) + ", file " + std::to_string(file[i]) + "\n";
  }
  return comparison;
}

bool is_in_both(const TuningPage::Value& value) {
  return value.in_reply && !value.entries.empty();
}

bool is_saved(const TuningPage::Value& value) {
  return is_in_both(value) && value.in_save;
}

Task<ExitCode> diff(Chip& chip, const TuningPage& page, const UserDataImage& image) {
  const Numbers on_chip = co_await read_page(chip, page);
  const Comparison comparison = compare(page, on_chip, page.from_image(image), is_in_both);
  chip.out().result(
      {{"page", page.name()}, {"compared", comparison.compared}, {"differences", comparison.differences}},
      comparison.text);
  co_return comparison.differences.empty() ? kDone : kNegative;
}

/// Whatever had left of a save that was given up, the chip is not left in the middle of it.
Task<> close_brackets(Chip& chip) {
  Traffic closing;
  append(closing, RegisterWrite{reg::kKeepBracket, 0});
  append(closing, RegisterWrite{reg::kSaveBracket, 0});
  co_await chip.send(std::move(closing));
}

Task<> send_save(Chip& chip, TuningPage::Save save) {
  HeadlessHost host(chip);
  chip.on_interrupt([&chip] { chip.link().cancel_running_job(); });
  PageSave on_chip;
  on_chip.traffic = std::move(save.traffic);
  on_chip.settling = save.settling;
  const bool saved = co_await save_on_chip(host, std::move(on_chip));
  if (!saved && chip.interrupted()) {
    co_await close_brackets(chip);
    throw Complaint{kNegative, "Interrupted: the chip has only a part of the page"};
  }
  if (!saved) throw Complaint{kPortFailed, host.last_status()};
}

Task<ExitCode> verify(Chip& chip, const TuningPage& page, const Numbers& sent, Json json) {
  const Numbers on_chip = co_await read_page(chip, page);
  const Comparison comparison = compare(page, on_chip, sent, is_saved);
  json["verified"] = comparison.compared;
  json["differences"] = comparison.differences;
  chip.out().result(json, comparison.text);
  if (!comparison.differences.empty()) co_return kNegative;
  chip.out().remark(page.name() + ": " + std::to_string(comparison.compared) + " values read back agree\n");
  co_return kDone;
}

Task<ExitCode> save(Chip& chip, const TuningPage& page, const UserDataImage& image,
                    const PageOptions& options) {
  TuningPage::Save save = page.save(image);
  for (const std::string& warning : save.warnings) chip.out().warning(warning);
  const Numbers sent = save.numbers;
  const Json json = {{"page", page.name()}, {"sent", save.traffic.size()}};
  chip.out().remark(page.name() + ": saving, " + std::to_string(save.traffic.size()) + " flushes\n");
  co_await send_save(chip, std::move(save));
  co_await page.after_save(chip.link());
  if (options.verify) co_return co_await verify(chip, page, sent, json);
  chip.out().result(json);
  co_return kDone;
}

ExitCode run_show(Context& context, const PageOptions& options) {
  const auto page = make_tuning_page(options.name);
  return run_on_chip(context, [&](Chip& chip) { return show(chip, *page); });
}

ExitCode run_save(Context& context, const PageOptions& options) {
  const UserDataImage image = read_whole_settings(options.file, options.lenient);
  const auto page = make_tuning_page(options.name);
  return run_on_chip(context, [&](Chip& chip) { return save(chip, *page, image, options); });
}

ExitCode run_diff(Context& context, const PageOptions& options) {
  const UserDataImage image = read_whole_settings(options.file, options.lenient);
  const auto page = make_tuning_page(options.name);
  return run_on_chip(context, [&](Chip& chip) { return diff(chip, *page, image); });
}

void declare_name(CLI::App& command, PageOptions& options) {
  const std::vector<std::string> names(std::begin(kTuningPages), std::end(kTuningPages));
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  const auto take = [&options, names, list](const std::string& name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      refuse("No page is named \"" + name + "\"; the pages are " + list);
    }
    options.name = name;
  };
  command.add_option_function<std::string>("NAME", take, "One of " + list)->type_name("")->required();
}

void declare_save(CLI::App& command, PageOptions& options) {
  declare_name(command, options);
  add_path(command, "--from", options.file, "The setting file to take the values from")->required();
  command.add_flag("--verify", options.verify, "Read the page back afterwards and compare");
  add_lenient(command, options.lenient);
}

void declare_diff(CLI::App& command, PageOptions& options) {
  declare_name(command, options);
  add_path(command, "FILE", options.file, "A setting file")->required();
  add_lenient(command, options.lenient);
}

}  // namespace

void add_page_commands(CLI::App& app, Context& context) {
  CLI::App* page = add_group(app, "page", "The tuning pages: front, awb, dynamic, gamma, matrix, lsc");
  add_command<PageOptions>(*page, context, "show", "Read a page back from the chip and print its values",
                           declare_name, run_show);
  add_command<PageOptions>(*page, context, "save", "Save a page on the chip, as a setting file has it",
                           declare_save, run_save);
  add_command<PageOptions>(*page, context, "diff", "Compare a page on the chip with a setting file",
                           declare_diff, run_diff);
}

}  // namespace qv5123
