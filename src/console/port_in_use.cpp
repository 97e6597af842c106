#include "console/port_in_use.h"

#include <utility>

#include "link/port_name.h"

namespace qv5123 {

std::string device_name(const PortSettings& settings) {
  return settings.device.empty() ? comm_device_name(settings.number) : settings.device;
}

PortInUse::PortInUse(PortSettings settings, Prompts& prompts, Surroundings surroundings)
    : settings_(std::move(settings)), prompts_(prompts), surroundings_(std::move(surroundings)) {}

Task<bool> PortInUse::open() {
  surroundings_.show(settings_);
  const PortSettings tried = settings_;
  const OpenResult result = co_await surroundings_.open(device_name(tried), tried.line);
  open_ = result.ok();
  if (open_) {
    surroundings_.append_console(port_open_text(tried));
    surroundings_.empty_write();
    co_return true;
  }
  Message failure;
  failure.text = std::string(kSerialOpenFail) + (result.text.empty() ? "" : "\n\n" + result.text);
  failure.icon = Message::Icon::warning;
  co_await prompts_.message(std::move(failure));
  surroundings_.append_console(port_fail_text(tried));
  co_return false;
}

Task<> PortInUse::change() {
  std::optional<PortSettings> chosen = co_await surroundings_.choose(settings_);
  if (!chosen) co_return;
  settings_ = std::move(*chosen);
  surroundings_.store(settings_);
  co_await open();
}

void PortInUse::close() {
  if (!open_) return;
  surroundings_.close();
  open_ = false;
  surroundings_.append_console(kSerialClosedText);
}

}  // namespace qv5123
