#include "base/atomic_file.h"
#include "cli/command.h"
#include "link/port_list.h"

namespace qv5123 {
namespace {

struct PortsOptions {};

ExitCode list(Context& context, const PortsOptions&) {
  Json json = Json::array();
  std::string text;
  for (const PortInfo& port : list_ports()) {
    json.push_back({{"device", port.device}, {"name", port.name}, {"number", port.number}});
    text += port.device + "  " + port.name + "\n";
  }
  context.out.result(json, text);
  return ExitCode::done;
}

}  // namespace

void add_port_commands(CLI::App& app, Context& context) {
  add_command<PortsOptions>(
      app, context, "ports", "List the serial ports: device, name", [](CLI::App&, PortsOptions&) {}, list);
}

}  // namespace qv5123
