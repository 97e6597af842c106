#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/scheduler.h"
#include "base/task.h"
#include "console/prompts.h"
#include "link/port_settings.h"
#include "link/serial_device.h"

namespace qv5123 {

/// The port as the main form has it: opened at the start, changed by the user, closed by command, with what
/// is said about it.
class PortInUse {
 public:
  struct Surroundings {
    std::function<Task<OpenResult>(std::string name, LineSettings line)> open;
    std::function<void()> close;
    /// The write of no bytes that follows an open: it only pays the pacing delay.
    std::function<void()> empty_write;
    /// The port dialog; nothing when the user cancels.
    std::function<Task<std::optional<PortSettings>>(PortSettings)> choose;
    std::function<void(const PortSettings&)> store;
    std::function<void(const PortSettings&)> show;
    std::function<void(const std::string&)> append_console;
  };

  PortInUse(PortSettings settings, Prompts& prompts, Surroundings surroundings);

  const PortSettings& settings() const { return settings_; }
  /// From an open that went well to a close. A port that is gone for a while counts as open.
  bool is_open() const { return open_; }

  /// Opens the port of the settings and says what came of it. True when it is open.
  Task<bool> open();
  /// "Change COM Port...": the dialog, then the port it chose is stored and opened anew.
  Task<> change();
  /// The serial close command.
  void close();

 private:
  PortSettings settings_;
  Prompts& prompts_;
  Surroundings surroundings_;
  bool open_ = false;
};

/// What the device of `settings` is opened by.
std::string device_name(const PortSettings& settings);

}  // namespace qv5123
