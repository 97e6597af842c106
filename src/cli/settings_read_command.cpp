#include <memory>
#include <utility>

#include "base/atomic_file.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/page_reading.h"
#include "console/setting_file.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

struct ReadOptions {
  std::filesystem::path output;
  std::filesystem::path base;
  std::vector<std::string> pages{"all"};
  bool lenient = false;
};

/// Puts what the chip reports of the page into the image. Returns how many values that were.
std::size_t take_reported(const TuningModel& page, UserDataImage& image) {
  std::size_t taken = 0;
  for (std::size_t i = 0; i < page.fields().size(); ++i) {
    const FieldInfo& field = page.fields()[i];
    if (!field.has_reply() || !field.has_entry()) continue;
    page.store_field(i, image);
    ++taken;
  }
  return taken;
}

Task<ExitCode> read(Chip& chip, const ReadOptions& options, UserDataImage image) {
  std::size_t taken = 0;
  for (const std::string& name : pages_named(options.pages)) {
    chip.out().progress(name);
    const std::unique_ptr<TuningModel> page = make_model(name);
    // What shares a byte with a value that is reported stays as the file has it.
    page->load_all(image);
    co_await read_page(chip, *page);
    taken += take_reported(*page, image);
  }
  write_file(options.output, setting_text(image));
  const std::string rest =
      options.base.empty() ? "0, for want of --base" : "as " + path_text(options.base) + " has it";
  chip.out().remark(path_text(options.output) + ": " + std::to_string(taken) +
                    " values of the chip, all else is " + rest + "\n");
  chip.out().result({{"file", path_text(options.output)}, {"values", taken}});
  co_return ExitCode::done;
}

ExitCode run(Context& context, const ReadOptions& options) {
  UserDataImage image;
  if (!options.base.empty()) image = read_whole_settings(options.base, options.lenient);
  pages_named(options.pages);
  return run_on_chip(context, [&](Chip& chip) { return read(chip, options, image); });
}

void declare(CLI::App& command, ReadOptions& options) {
  add_path(command, "-o,--output", options.output, "The setting file to write")->required();
  command.add_option("--pages", options.pages, "Only these pages: " + page_names() + " (default all)")
      ->type_name("NAME");
  add_path(command, "--base", options.base, "The setting file that has what the chip does not report");
  add_lenient(command, options.lenient);
}

}  // namespace

void add_settings_read(CLI::App& settings, Context& context) {
  add_command<ReadOptions>(settings, context, "read", "Read the pages from the chip and write a setting file",
                           declare, run);
}

}  // namespace qv5123
