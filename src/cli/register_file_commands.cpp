#include <utility>

#include "base/delay.h"
#include "base/text.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "link/indirect_access.h"
#include "link/reply_text.h"
#include "registers/register_file.h"
#include "registers/register_loader.h"

namespace qv5123 {
namespace {

struct FileOptions {
  std::filesystem::path file;
  std::filesystem::path description;
  std::string category;
  std::string find;
};

CLI::Option* add_description(CLI::App& command, FileOptions& options, const std::string& help) {
  return add_path(command, "--description", options.description, help);
}

std::string category_name(const RegDescription& description, const RegEntry& entry) {
  return utf8(description.categories[static_cast<std::size_t>(entry.category)]);
}

void check_category(const RegDescription& description, const std::string& name) {
  std::string known;
  for (const std::u16string& category : description.categories) {
    if (utf8(category) == name) return;
    known += (known.empty() ? "" : ", ") + utf8(category);
  }
  refuse("--category: the description has no \"" + name + "\"; it has " + known);
}

std::vector<RegEntry*> registers_to_save(RegDescription& description, const std::string& category) {
  std::vector<RegEntry*> wanted;
  for (RegEntry& entry : description.registers) {
    const bool in_category = category.empty() || category_name(description, entry) == category;
    if (entry.saved() && entry.address > 0 && in_category) wanted.push_back(&entry);
  }
  return wanted;
}

std::string counted(std::size_t done, std::size_t of) {
  return std::to_string(done) + " of " + std::to_string(of) + " registers";
}

Task<ExitCode> save(Chip& chip, const FileOptions& options, RegDescription& description) {
  const std::vector<RegEntry*> wanted = registers_to_save(description, options.category);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    chip.out().progress(counted(i, wanted.size()));
    const std::string reply = co_await chip.ask(isp_read_request(wanted[i]->address),
                                                hex(static_cast<unsigned>(wanted[i]->address), 4));
    if (reply.size() < 2) throw Complaint{ExitCode::negative, "An answer is too short"};
    wanted[i]->value = reply_byte_at(reply, reply.size() - 2);
  }
  write_file(options.file, register_file_text(description));
  chip.out().result(Json{{"file", path_text(options.file)}, {"registers", wanted.size()}});
  chip.out().remark(path_text(options.file) + ": " + std::to_string(wanted.size()) + " registers\n");
  co_return ExitCode::done;
}

ExitCode run_save(Context& context, const FileOptions& options) {
  RegDescription description = load_description(context.out, options.description);
  if (!options.category.empty()) check_category(description, options.category);
  return run_on_chip(context, [&](Chip& chip) { return save(chip, options, description); });
}

RegisterFile read_register_file(const std::filesystem::path& path) {
  RegisterFile file = RegisterFile::parse(read_file(path, RegisterFile::kLargest));
  if (file.skipped > 0) {
    refuse(path_text(path) + ", line " + std::to_string(file.first_skipped) +
           ": not of the form \"0xF800=0x1A //NAME\"");
  }
  return file;
}

/// What the window would write: in the order of the description, each register once.
std::vector<RegisterFile::Line> known_lines(const RegisterFile& file, RegDescription description) {
  std::vector<RegisterFile::Line> lines;
  apply_register_file(file, description);
  for (const RegEntry& entry : description.registers) {
    if (entry.value >= 0) lines.push_back({entry.address, entry.value});
  }
  return lines;
}

Task<ExitCode> load(Chip& chip, const FileOptions& options, const std::vector<RegisterFile::Line>& lines) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    chip.out().progress(counted(i, lines.size()));
    Traffic write;
    write.push_back(isp_write(lines[i].address, lines[i].value));
    co_await chip.send(std::move(write));
    co_await Delay(chip.link().scheduler(), RegisterLoader::kWriteWait);
  }
  chip.out().result(Json{{"file", path_text(options.file)}, {"registers", lines.size()}});
  chip.out().remark(path_text(options.file) + ": " + std::to_string(lines.size()) + " registers written\n");
  co_return ExitCode::done;
}

ExitCode run_load(Context& context, const FileOptions& options) {
  const RegisterFile file = read_register_file(options.file);
  const std::vector<RegisterFile::Line> lines =
      options.description.empty() ? file.lines
                                  : known_lines(file, load_description(context.out, options.description));
  if (lines.empty()) {
    refuse(path_text(options.file) + " has no register" +
           (options.description.empty() ? "" : " that the description knows"));
  }
  return run_on_chip(context, [&](Chip& chip) { return load(chip, options, lines); });
}

Json json_of(const RegDescription& description, std::size_t reg) {
  const RegEntry& entry = description.registers[reg];
  Json fields = Json::array();
  const auto [first, last] = description.fields_of(reg);
  for (std::size_t i = first; i < last; ++i) {
    const RegBitField& field = description.bit_fields[i];
    fields.push_back(
        {{"bits", utf8(field.range)}, {"name", utf8(field.name)}, {"description", utf8(field.description)}});
  }
  return {{"category", category_name(description, entry)},
          {"address", entry.address},
          {"name", utf8(entry.name)},
          {"saved", entry.saved()},
          {"reset", utf8(entry.reset_text)},
          {"fields", fields}};
}

/// Category, address, name and the bit fields as "[7:4] NAME".
std::string line_of(const RegDescription& description, std::size_t reg) {
  const RegEntry& entry = description.registers[reg];
  std::string line =
      category_name(description, entry) + "  " + utf8(entry.address_text) + "  " + utf8(entry.name);
  const auto [first, last] = description.fields_of(reg);
  for (std::size_t i = first; i < last; ++i) {
    line += "  " + utf8(description.bit_fields[i].range) + " " + utf8(description.bit_fields[i].name);
  }
  return line + "\n";
}

ExitCode run_list(Context& context, const FileOptions& options) {
  const RegDescription description = load_description(context.out, options.description);
  const std::string wanted = lower_case(options.find);
  Json json = Json::array();
  std::string text;
  for (std::size_t reg = 0; reg < description.registers.size(); ++reg) {
    const std::string line = line_of(description, reg);
    if (lower_case(line).find(wanted) == std::string::npos) continue;
    text += line;
    json.push_back(json_of(description, reg));
  }
  context.out.result(json, text);
  return json.empty() ? ExitCode::negative : ExitCode::done;
}

void declare_save(CLI::App& command, FileOptions& options) {
  add_path(command, "FILE", options.file, "The register text file to write")->required();
  add_description(command, options, "The description of the registers (default regu.xml)");
  command.add_option("--category", options.category, "Only the registers of this category")
      ->type_name("NAME");
}

void declare_load(CLI::App& command, FileOptions& options) {
  add_path(command, "FILE", options.file, "The register text file to read")->required();
  add_description(command, options, "Write only registers that this description knows, in its order");
}

void declare_list(CLI::App& command, FileOptions& options) {
  add_description(command, options, "The description of the registers (default regu.xml)");
  command.add_option("--find", options.find, "Only registers whose line holds this text, in any case")
      ->type_name("TEXT");
}

}  // namespace

void add_register_file_commands(CLI::App& reg, Context& context) {
  add_command<FileOptions>(reg, context, "save", "Read every saved register and write a register text file",
                           declare_save, run_save);
  add_command<FileOptions>(reg, context, "load", "Write a register text file to the chip", declare_load,
                           run_load);
  add_command<FileOptions>(reg, context, "list", "Print the description: category, address, name, bit fields",
                           declare_list, run_list);
}

}  // namespace qv5123
