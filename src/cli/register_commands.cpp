#include <cstdio>
#include <optional>
#include <utility>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "link/indirect_access.h"
#include "registers/register_names.h"
#include "tuning/raw_access.h"

namespace qv5123 {
namespace {

struct AccessOptions {
  std::vector<int> numbers;
  std::vector<std::string> names;  ///< what is read: addresses, and names of the description
  std::filesystem::path description;
  bool wide = false;
  bool sensor = false;

  Access access() const { return wide ? Access::isp_word : sensor ? Access::sensor : Access::isp_byte; }
};

void declare_kind(CLI::App& command, AccessOptions& options) {
  auto* wide = command.add_flag("--wide", options.wide, "2-byte values of ISP registers");
  command.add_flag("--sensor", options.sensor, "Registers of the sensor, 2 bytes each")->excludes(wide);
}

Batch write_batch(Access access, int address, int value) {
  if (access == Access::isp_word) return isp_wide_write(address, value);
  if (access == Access::sensor) return sensor_write(address, value);
  return isp_write(address, value);
}

/// Registers of the ISP have 12 bits of address, of which the description speaks as 0xF000 and on. Another
/// address would reach a register that was not meant.
void check_isp_address(const std::string& name, int address) {
  if (address < 0x1000 || address >= 0xF000) return;
  refuse(name + ": " + hex(static_cast<unsigned>(address), 4) +
         " is no register of the ISP; they are 0x000..0xFFF, also written 0xF000..0xFFFF");
}

void check_address(Access access, int address) {
  if (access != Access::sensor) check_isp_address("ADDR", address);
}

/// What reaches the chip of an address: of the ISP's own the low 12 bits, whichever way it was written.
int sent_address(Access access, int address) {
  return access == Access::sensor ? address : address & 0xFFF;
}

int shown_address(Access access, int address) {
  return access == Access::sensor ? address : 0xF000 | (address & 0xFFF);
}

Json register_json(int address, int value) {
  return {{"address", address}, {"value", value}};
}

/// What is read: a register, or some bits of one that the description names.
struct Wanted {
  std::string name;  ///< empty for an address
  RegisterBits bits;
};

Wanted wanted_address(const AccessOptions& options, const std::string& word) {
  const int address = number_in("ADDR", word, 0, 0xFFFF);
  check_address(options.access(), address);
  return {"", {shown_address(options.access(), address)}};
}

/// What begins with a digit or a sign is meant as a number.
bool may_be_name(const std::string& word) {
  return word.find_first_of("0123456789+-") != 0;
}

std::vector<Wanted> wanted(Context& context, const AccessOptions& options) {
  std::vector<Wanted> all;
  std::optional<RegDescription> description;
  for (const std::string& word : options.names) {
    if (!may_be_name(word)) {
      all.push_back(wanted_address(options, word));
      continue;
    }
    if (options.access() != Access::isp_byte) refuse(word + ": names are of registers of one byte");
    if (!description) description = load_description(context.out, options.description);
    const auto bits = find_register(*description, word);
    if (!bits) refuse("The description has no register \"" + word + "\"");
    all.push_back({word, *bits});
  }
  return all;
}

/// What the chip holds there, as hex digits.
Task<std::string> read_one(Chip& chip, Access access, const Wanted& one) {
  const std::string name = one.name.empty() ? hex(static_cast<unsigned>(one.bits.address), 4) : one.name;
  Batch request = read_request(access, sent_address(access, one.bits.address));
  const std::string reply = co_await chip.ask(std::move(request), name);
  const auto field = answer_field(access, reply);
  if (!field) throw Complaint{ExitCode::negative, name + ": the answer is too short"};
  co_return *field;
}

Json value_json(const Wanted& one, int value) {
  Json json = register_json(one.bits.address, value);
  if (!one.name.empty()) json["name"] = one.name;
  return json;
}

Task<ExitCode> read(Chip& chip, const AccessOptions& options, const std::vector<Wanted>& all) {
  chip.only_print();
  Json json = Json::array();
  for (const Wanted& one : all) {
    const std::string digits = co_await read_one(chip, options.access(), one);
    const int value = std::stoi(digits, nullptr, 16);
    json.push_back(value_json(one, one.bits.whole() ? value : one.bits.of(value)));
    const std::string text = one.bits.whole() ? "0x" + digits : std::to_string(one.bits.of(value));
    const std::string address = hex(static_cast<unsigned>(one.bits.address), 4);
    chip.out().text((one.name.empty() ? address : one.name) + " = " + text + "\n");
  }
  chip.out().result(json);
  co_return ExitCode::done;
}

Task<ExitCode> send_all(Chip& chip, Traffic traffic) {
  const std::size_t flushes = traffic.size();
  co_await chip.send(std::move(traffic));
  chip.out().result(Json{{"sent", flushes}});
  co_return ExitCode::done;
}

ExitCode run_read(Context& context, const AccessOptions& options) {
  const std::vector<Wanted> all = wanted(context, options);
  return run_on_chip(context, [&](Chip& chip) { return read(chip, options, all); });
}

struct Pair {
  int address;
  int value;
};

std::vector<Pair> pairs(const std::vector<int>& numbers, int highest_value) {
  if (numbers.size() % 2 != 0) {
    refuse("ADDR " + hex(static_cast<unsigned>(numbers.back()), 2) + " has no VALUE");
  }
  std::vector<Pair> result;
  for (std::size_t i = 0; i < numbers.size(); i += 2) {
    if (numbers[i + 1] > highest_value) {
      refuse("VALUE: " + hex(static_cast<unsigned>(numbers[i + 1]), 2) + " is not in 0.." +
             std::to_string(highest_value));
    }
    result.push_back({numbers[i], numbers[i + 1]});
  }
  return result;
}

ExitCode run_write(Context& context, const AccessOptions& options) {
  Traffic traffic;
  for (const Pair& pair : pairs(options.numbers, options.access() == Access::isp_byte ? 0xFF : 0xFFFF)) {
    check_address(options.access(), pair.address);
    const int address = sent_address(options.access(), pair.address);
    traffic.push_back(write_batch(options.access(), address, pair.value));
  }
  return run_on_chip(context, [&traffic](Chip& chip) { return send_all(chip, traffic); });
}

struct SendOptions {
  std::vector<int> numbers;
};

ExitCode run_send(Context& context, const SendOptions& options) {
  Batch batch;
  for (const Pair& pair : pairs(options.numbers, 0xFF)) {
    batch.push_back({low_byte(pair.address), low_byte(pair.value)});
  }
  return run_on_chip(context, [&batch](Chip& chip) { return send_all(chip, {batch}); });
}

struct DumpOptions {
  int start = 0;
  int end = 0;
};

/// The registers of a dump's lines "0xF922 = 0x12".
Json registers_of(const std::string& text) {
  Json json = Json::array();
  unsigned address = 0;
  unsigned value = 0;
  for (std::size_t at = 0; (at = text.find("0x", at)) != std::string::npos; ++at) {
    if (std::sscanf(text.c_str() + at, "0x%4x = 0x%4x", &address, &value) == 2) {
      json.push_back(register_json(static_cast<int>(address), static_cast<int>(value)));
    }
  }
  return json;
}

/// Listens until the chip has finished. One that goes on and on is given up after the timeout, counted anew
/// while more of the registers that were asked for come: a long dump takes its time.
Task<> hear_out(Chip& chip, const std::string& text, std::size_t wanted) {
  std::size_t registers = 0;
  while (!co_await chip.wait_for_quiet(Chip::kQuiet, chip.timeout())) {
    const std::size_t now = registers_of(text).size();
    if (now == registers || now >= wanted) co_return;
    registers = now;
  }
}

Task<ExitCode> dump(Chip& chip, const DumpOptions& options) {
  std::string text;
  chip.only_print();
  chip.on_console([&](const std::string& received) {
    text += received;
    chip.out().text(printable(received));
  });
  Batch request = dump_request(options.start & 0xFFF, options.end & 0xFFF);
  const bool heard = co_await chip.send_and_hear(std::move(request));
  if (!heard) throw Complaint{ExitCode::negative, "The chip did not answer"};
  co_await hear_out(chip, text, static_cast<std::size_t>(options.end - options.start) + 1);
  // Some chips answer in a block instead of in words.
  if (const auto block = chip.link().reply().take_block()) {
    const std::string lines = dump_text(options.start, options.end, *block);
    text += lines;
    chip.out().text(printable(lines));
  }
  if (chip.link().reply().overran()) {
    const std::string trouble = overlong_dump_text(options.start, options.end);
    throw Complaint{ExitCode::negative, trouble.substr(0, trouble.find('\r'))};
  }
  chip.out().result(registers_of(text));
  co_return ExitCode::done;
}

ExitCode run_dump(Context& context, const DumpOptions& options) {
  check_isp_address("START", options.start);
  check_isp_address("END", options.end);
  if (options.end < options.start) {
    refuse("END " + hex(static_cast<unsigned>(options.end), 4) + " lies before START " +
           hex(static_cast<unsigned>(options.start), 4));
  }
  return run_on_chip(context, [&options](Chip& chip) { return dump(chip, options); });
}

}  // namespace

void add_register_commands(CLI::App& app, Context& context) {
  CLI::App* reg = add_group(app, "reg", "Registers of the ISP and the sensor");
  add_command<AccessOptions>(
      *reg, context, "read", "Read registers and print them as \"0xF922 = 0x12\"",
      [](CLI::App& command, AccessOptions& options) {
        command
            .add_option(
                "ADDR", options.names,
                "Addresses, and registers or bit fields as the description names them: NAME, NAME.FIELD")
            ->type_name("")
            ->required();
        add_path(command, "--description", options.description,
                 "The description of the registers (default regu.xml)");
        declare_kind(command, options);
      },
      run_read);
  add_command<AccessOptions>(
      *reg, context, "write", "Write registers, one flush each",
      [](CLI::App& command, AccessOptions& options) {
        add_numbers(command, "ADDR VALUE", options.numbers, 0, 0xFFFF,
                    "Address and value, any number of pairs")
            ->required();
        declare_kind(command, options);
      },
      run_write);
  add_register_file_commands(*reg, context);
  add_register_check(*reg, context);
  add_command<DumpOptions>(
      *reg, context, "dump", "Ask for a dump of ISP registers and print what comes",
      [](CLI::App& command, DumpOptions& options) {
        add_number(command, "START", options.start, 0, 0xFFFF, "First address")->required();
        add_number(command, "END", options.end, 0, 0xFFFF, "Last address")->required();
      },
      run_dump);
  add_command<SendOptions>(
      app, context, "send", "Write direct registers, all in one flush",
      [](CLI::App& command, SendOptions& options) {
        add_numbers(command, "ADDR VALUE", options.numbers, 0, 0xFF,
                    "Register and value, any number of pairs; both 0..255")
            ->required();
      },
      run_send);
}

}  // namespace qv5123
