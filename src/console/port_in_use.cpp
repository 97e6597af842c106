#include "console/port_in_use.h"

#include <utility>

#include "link/port_list.h"

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
  awaited_ = false;
  if (open_) {
    say_open(tried);
    co_return true;
  }
  if (result.error == OpenError::not_found) await_port(tried);
  Message failure;
  failure.text = std::string(kSerialOpenFail) + (result.text.empty() ? "" : "\n\n" + result.text);
  failure.icon = Message::Icon::warning;
  co_await prompts_.message(std::move(failure));
  surroundings_.append_console(port_fail_text(tried));
  co_return false;
}

void PortInUse::say_open(const PortSettings& opened) {
  surroundings_.append_console(port_open_text(opened));
  surroundings_.empty_write();
}

void PortInUse::await_port(const PortSettings& tried) {
  // Where nobody ever chose a port there is none to wait for.
  if (!surroundings_.open_when_there || tried == PortSettings{}) return;
  awaited_ = true;
  surroundings_.open_when_there();
  if (surroundings_.say) {
    surroundings_.say(true, shown_port(tried) + " is not there. It is opened when it appears.");
  }
}

void PortInUse::connected() {
  if (!awaited_) return;
  awaited_ = false;
  open_ = true;
  say_open(settings_);
}

Task<> PortInUse::change() {
  std::optional<PortSettings> chosen = co_await surroundings_.choose(settings_);
  if (!chosen) co_return;
  co_await leave_chip();
  settings_ = std::move(*chosen);
  surroundings_.store(settings_);
  co_await open();
}

Task<> PortInUse::leave_chip() {
  if (open_ && surroundings_.leave_chip) co_await surroundings_.leave_chip();
}

Task<> PortInUse::close() {
  if (!open_ && !awaited_) co_return;
  co_await leave_chip();
  // Closed twice, or meanwhile.
  if (!open_ && !awaited_) co_return;
  surroundings_.close();
  if (open_) surroundings_.append_console(kSerialClosedText);
  open_ = awaited_ = false;
  if (surroundings_.say) surroundings_.say(false, shown_port(settings_) + " is closed.");
}

}  // namespace qv5123
