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
    /// Tells the chip what it must know before its port is closed. May be empty.
    std::function<Task<>()> leave_chip = {};
    /// The write of no bytes that follows an open: it only pays the pacing delay.
    std::function<void()> empty_write;
    /// The port dialog; nothing when the user cancels.
    std::function<Task<std::optional<PortSettings>>(PortSettings)> choose;
    std::function<void(const PortSettings&)> store;
    std::function<void(const PortSettings&)> show;
    std::function<void(const std::string&)> append_console;
    /// A port that is not there is to be opened as soon as it is; connected() is called then. May be empty.
    std::function<void()> open_when_there = {};
    /// Says what the state of the port is, and whether that is a fault. May be empty.
    std::function<void(bool fault, const std::string&)> say = {};
  };

  PortInUse(PortSettings settings, Prompts& prompts, Surroundings surroundings);

  const PortSettings& settings() const { return settings_; }
  /// From an open that went well to a close. A port that is gone for a while counts as open.
  bool is_open() const { return open_; }

  /// Opens the port of the settings and says what came of it. True when it is open.
  Task<bool> open();
  /// "Change COM Port...": the dialog, then the port it chose is stored and opened anew.
  Task<> change();
  /// The serial close command. Also ends the promise to open a port that is away.
  Task<> close();
  /// The port that was waited for is open.
  void connected();

 private:
  void await_port(const PortSettings& tried);
  void say_open(const PortSettings& opened);
  Task<> leave_chip();

  PortSettings settings_;
  Prompts& prompts_;
  Surroundings surroundings_;
  bool open_ = false;
  bool awaited_ = false;
};

/// What the device of `settings` is opened by.
std::string device_name(const PortSettings& settings);

}  // namespace qv5123
