#include <optional>
#include <utility>

#include "base/atomic_file.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "link/indirect_access.h"
#include "link/reply_text.h"
#include "registers/register_file.h"
#include "registers/register_names.h"

namespace qv5123 {
namespace {

struct CheckOptions {
  std::filesystem::path file;
  std::filesystem::path description;
};

Task<int> read_byte(Chip& chip, const ExpectedRegister& expected) {
  const std::string reply = co_await chip.ask(isp_read_request(expected.address), expected.name);
  if (reply.size() < 2) throw Complaint{ExitCode::negative, expected.name + ": the answer is too short"};
  co_return reply_byte_at(reply, reply.size() - 2);
}

Task<ExitCode> check(Chip& chip, const std::vector<ExpectedRegister>& all) {
  Json differences = Json::array();
  std::string text;
  for (const ExpectedRegister& expected : all) {
    const int value = co_await read_byte(chip, expected);
    if ((value & expected.mask) == (expected.value & expected.mask)) continue;
    text += difference_text(expected, value) + "\n";
    differences.push_back({{"name", expected.name},
                           {"address", expected.address},
                           {"chip", value & expected.mask},
                           {"expected", expected.value},
                           {"mask", expected.mask}});
  }
  chip.out().result({{"checked", all.size()}, {"differences", differences}}, text);
  if (!differences.empty()) co_return ExitCode::negative;
  chip.out().remark(std::to_string(all.size()) + " registers equal\n");
  co_return ExitCode::done;
}

ExitCode run(Context& context, const CheckOptions& options) {
  std::optional<RegDescription> description;
  std::error_code ignored;
  // Without one, addresses will do.
  if (!options.description.empty() || std::filesystem::exists("regu.xml", ignored))
    description = load_description(context.out, options.description);
  const auto expected = RegisterExpectations::parse(read_file(options.file, RegisterFile::kLargest),
                                                    description ? &*description : nullptr);
  if (!expected.problem.empty()) refuse(path_text(options.file) + ", " + expected.problem);
  if (expected.registers.empty()) refuse(path_text(options.file) + " has no register");
  return run_on_chip(context, [&](Chip& chip) { return check(chip, expected.registers); });
}

void declare(CLI::App& command, CheckOptions& options) {
  add_path(command, "FILE", options.file,
           "Lines ADDR=VALUE, ADDR&MASK=VALUE, NAME=VALUE or NAME.FIELD=VALUE; a register text file is one")
      ->required();
  add_path(command, "--description", options.description,
           "The description of the registers (default regu.xml where there is one)");
}

}  // namespace

void add_register_check(CLI::App& reg, Context& context) {
  add_command<CheckOptions>(reg, context, "check", "Compare registers with what a file expects of them",
                            declare, run);
}

}  // namespace qv5123
