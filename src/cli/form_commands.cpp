#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/numbers.h"
#include "console/main_commands.h"

namespace qv5123 {
namespace {

struct NoOptions {};
struct ConfirmOptions {
  bool yes = false;
};
struct PatternOptions {
  int number = 0;
};

Task<ExitCode> send_batch(Chip& chip, Batch batch) {
  Traffic traffic;
  traffic.push_back(std::move(batch));
  co_await chip.send(std::move(traffic));
  chip.out().result(Json{{"sent", 1}});
  co_return ExitCode::done;
}

ExitCode run_batch(Context& context, const Batch& batch) {
  return run_on_chip(context, [&batch](Chip& chip) { return send_batch(chip, batch); });
}

template <OsdKey key>
ExitCode press(Context& context, const NoOptions&) {
  return run_batch(context, osd_key(key));
}

template <OsdKey key>
void add_key(CLI::App& osd, Context& context, const std::string& name) {
  add_command<NoOptions>(
      osd, context, name, "Press the menu key", [](CLI::App&, NoOptions&) {}, press<key>);
}

void declare_confirm(CLI::App& command, ConfirmOptions& options) {
  command.add_flag("--yes", options.yes, "It is meant: nothing can be taken back")->required();
}

/// A number where the text is one.
Json value_of(const std::string& text) {
  if (const auto number = parse_number(text)) return *number;
  if (const auto number = parse_real(text)) return *number;
  return text;
}

/// The lines " label: value" of an info text.
Json fields_of(const std::string& text) {
  Json fields = Json::object();
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const std::string line = text.substr(start, end - start);
    const std::size_t colon = line.find(": ");
    const std::size_t label = line.find_first_not_of(' ');
    if (colon != std::string::npos && label < colon) {
      fields[line.substr(label, colon - label)] = value_of(line.substr(colon + 2));
    }
    start = end + 1;
  }
  return fields;
}

Task<ExitCode> show_info(Chip& chip, Batch request) {
  std::string text;
  chip.on_console([&](const std::string& received) { text += chip_text(received); });
  const bool answered = co_await chip.send_and_listen(std::move(request));
  if (!answered || text.empty()) throw Complaint{ExitCode::negative, "The chip did not answer"};
  text.erase(0, text.find_first_not_of('\n'));
  chip.out().result({{"text", text}, {"fields", fields_of(text)}}, text);
  co_return ExitCode::done;
}

ExitCode run_info(Context& context, const Batch& request) {
  return run_on_chip(context, [&request](Chip& chip) { return show_info(chip, request); });
}

void add_osd(CLI::App& app, Context& context) {
  CLI::App* osd = add_group(app, "osd", "The chip's on-screen menu and its pattern");
  add_key<OsdKey::up>(*osd, context, "up");
  add_key<OsdKey::down>(*osd, context, "down");
  add_key<OsdKey::left>(*osd, context, "left");
  add_key<OsdKey::right>(*osd, context, "right");
  add_key<OsdKey::set>(*osd, context, "set");
  add_command<PatternOptions>(
      *osd, context, "pattern", "Choose the pattern",
      [](CLI::App& command, PatternOptions& options) {
        add_number(command, "N", options.number, 0, static_cast<int>(std::size(kOsdPatterns)) - 1,
                   "0 for OSD Pattern 1, 1 for OSD Pattern 2")
            ->required();
      },
      [](Context& context, const PatternOptions& options) {
        return run_batch(context, osd_pattern(options.number));
      });
}

}  // namespace

void add_form_commands(CLI::App& app, Context& context) {
  add_osd(app, context);
  add_command<ConfirmOptions>(
      app, context, "factory-reset", "Bring the factory data back", declare_confirm,
      [](Context& context, const ConfirmOptions&) { return run_batch(context, factory_reset()); });
  add_command<ConfirmOptions>(
      app, context, "copy-to-factory", "Make the present settings the factory data", declare_confirm,
      [](Context& context, const ConfirmOptions&) { return run_batch(context, copy_to_factory()); });
  CLI::App* info = add_group(app, "info", "What the chip says of its control loops");
  add_command<NoOptions>(
      *info, context, "ae", "Auto exposure", [](CLI::App&, NoOptions&) {},
      [](Context& context, const NoOptions&) { return run_info(context, ae_info()); });
  add_command<NoOptions>(
      *info, context, "awb", "Auto white balance", [](CLI::App&, NoOptions&) {},
      [](Context& context, const NoOptions&) { return run_info(context, awb_info()); });
}

}  // namespace qv5123
