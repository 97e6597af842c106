// The program's port: which one it begins with, how another is chosen, and what is known of its adapter.
#include <QDialog>
#include <exception>
#include <utility>

#include "app/ui/frame.h"
#include "app/ui/program.h"
#include "console/port_in_use.h"
#include "link/port_list.h"
#include "link/ui/serial_port_setting.h"

namespace qv5123 {
namespace {

constexpr const char* kNoPortYet = "No port was chosen yet.";

}  // namespace

Task<PortSettings> Program::initial_port() {
  if (parts_.fixed_port) co_return *parts_.fixed_port;
  const PortSettings stored = settings_.port();
  std::string why_asked = kNoPortYet;
  if (settings_.has_port()) {
    const OpenResult probed = co_await probe(device_name(stored));
    if (probed.ok()) co_return stored;
    why_asked = probed.text;
  }
  if (settings_.debug() != 0) co_return stored;
  const std::optional<PortSettings> chosen = co_await choose_port(stored, std::move(why_asked));
  if (!chosen) co_return PortSettings{};
  // Waited for, since the settings are read again when the window opens.
  co_await store_port(*chosen);
  co_return *chosen;
}

Task<OpenResult> Program::probe(std::string device) {
  std::function<OpenResult()> work = [probe = parts_.probe_port, device = std::move(device)] {
    return probe(device);
  };
  co_return co_await ports_.run<OpenResult>(std::move(work));
}

Task<OpenResult> Program::probe_chosen(std::string device) {
  // The port that is open here is closed before it is opened anew; Windows would call it busy.
  if (session_.connected() && openable_name(session_.name()) == openable_name(device)) co_return OpenResult{};
  co_return co_await probe(std::move(device));
}

std::unique_ptr<QDialog> Program::make_port_dialog(std::vector<PortInfo> ports, const PortSettings& current,
                                                   const std::string& why_asked) {
  const auto probe_one = [this](std::string device) { return probe_chosen(std::move(device)); };
  return std::make_unique<CSerialPortSetting>(std::move(ports), current, probe_one, why_asked, frame_.get());
}

Task<std::optional<PortSettings>> Program::choose_port(PortSettings current, std::string why_asked) {
  std::vector<PortInfo> ports = co_await ports_.run<std::vector<PortInfo>>(parts_.list_ports);
  std::unique_ptr<QDialog> dialog;
  try {
    dialog = make_port_dialog(std::move(ports), current, why_asked);
  } catch (const std::exception&) {
    dialog.reset();
  }
  if (!dialog) {
    Message failure;
    failure.text = "Dialog box could not be created!";
    co_await prompts_->message(std::move(failure));
    co_return std::nullopt;
  }
  Resolver<int> finished;
  QObject::connect(
      dialog.get(), &QDialog::finished, dialog.get(), [finished](int result) { finished.resolve(result); },
      Qt::QueuedConnection);
  dialog->open();
  const int result = co_await finished.pending();
  auto* setting = static_cast<CSerialPortSetting*>(dialog.get());
  const PortSettings chosen = setting->settings();
  // The flow goes on inside one of the dialog's own events.
  dialog.release()->deleteLater();
  if (result != QDialog::Accepted) co_return std::nullopt;
  co_return chosen;
}

Task<> Program::look_at_adapter() {
  using Timer = std::optional<std::chrono::milliseconds>;
  std::function<Timer()> work = [device = session_.name()] { return adapter_latency(device); };
  latency_timer_ = co_await ports_.run<Timer>(std::move(work));
}

}  // namespace qv5123
