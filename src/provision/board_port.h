#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/task.h"
#include "link/command_link.h"
#include "link/serial_device.h"
#include "provision/recipe.h"

namespace qv5123 {

/// Where a board is plugged in, again and again another one.
class BoardPort {
 public:
  struct Events {
    std::function<void(const std::string&)> console;  ///< what the chip says, 8-bit characters
    std::function<void(bool)> connected;              ///< the port was opened, or is gone
    std::function<void(const std::string&)> trouble;  ///< in words
  };

  virtual ~BoardPort() = default;
  /// To be called before open().
  void listen(Events events) { events_ = std::move(events); }

  virtual const std::string& name() const = 0;
  virtual CommandLink& link() = 0;
  virtual Task<OpenResult> open() = 0;
  virtual void close() = 0;
  virtual bool connected() const = 0;
  /// Of the line; 0 where nothing takes time on it.
  virtual std::uint32_t baud_rate() const = 0;
  /// A fixture puts in front of the camera what the step measures.
  virtual void prepare(const Step&) {}

 protected:
  const Events& events() const { return events_; }

 private:
  Events events_;
};

/// A serial port of the system. The scheduler must outlive it.
std::unique_ptr<BoardPort> make_board_port(Scheduler& scheduler, std::unique_ptr<SerialDevice> device,
                                           std::string name, const LineSettings& line);

}  // namespace qv5123
