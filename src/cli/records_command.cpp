#include <system_error>

#include "base/atomic_file.h"
#include "cli/command.h"
#include "provision/metrics.h"

namespace qv5123 {
namespace {

struct RecordsOptions {
  std::filesystem::path file;
  bool csv = false;
};

ExitCode summary(Context& context, const RecordsOptions& options) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(options.file, ignored))
    refuse("Cannot read " + path_text(options.file));
  const RecordSummary summary = RecordSummary::of(options.file);
  if (summary.not_records > 0)
    context.out.warning(path_text(options.file) + ": " + std::to_string(summary.not_records) +
                        " lines are no records");
  if (summary.records == 0) refuse(path_text(options.file) + " has no records");
  context.out.result(summary.json(), options.csv ? summary.csv() : summary.text());
  return ExitCode::done;
}

void declare(CLI::App& command, RecordsOptions& options) {
  add_path(command, "FILE", options.file, "The records of provision")->required();
  command.add_flag("--csv", options.csv, "Lines figure,step,value");
}

}  // namespace

void add_records_commands(CLI::App& app, Context& context) {
  CLI::App* records = add_group(app, "records", "The records of a production line");
  add_command<RecordsOptions>(*records, context, "summary",
                              "Print yield, first-pass yield, failures by step and the slowest step", declare,
                              summary);
}

}  // namespace qv5123
