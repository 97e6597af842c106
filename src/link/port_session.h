#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/scheduler.h"
#include "base/task.h"
#include "link/comm_port.h"
#include "link/command_link.h"
#include "link/greeting.h"
#include "link/port_sender.h"

namespace qv5123 {

/// What a session tells, on the scheduler's thread. Any of them may be empty.
struct PortSessionEvents {
  std::function<void(const std::string&)> console;  ///< text from the chip, 8-bit characters
  std::function<void(const std::string&)> status;   ///< a line for the status bar, UTF-8
  std::function<void(const std::string&)> trouble;  ///< a message the user must acknowledge, UTF-8
  std::function<void(bool)> connected;              ///< the port was opened, or closed or lost
  /// The line takes no bytes, and has not for Standstill::kSaidAfter; then that it takes them again.
  std::function<void(bool)> standstill;
};

/// What is said of a line that takes no bytes, and of one that takes them again.
std::string standstill_text(const std::string& port, bool stands);

/// A port in use: the device, its watcher and sending threads, the command link and the reply decoder, put
/// together. Notices when the port goes away and opens it again when it comes back.
class PortSession {
 public:
  /// How often a lost port is tried: with what opening takes, it is back within a second.
  static constexpr std::chrono::milliseconds kReopenEvery{500};
  /// How long close() lets a caller wait for a driver.
  static constexpr std::chrono::milliseconds kClosePatience{1000};

  PortSession(Scheduler& scheduler, std::unique_ptr<SerialDevice> device, PortSessionEvents events,
              CCommPort::Options options = {});
  ~PortSession();
  PortSession(const PortSession&) = delete;
  PortSession& operator=(const PortSession&) = delete;

  /// Closes what is open and opens `name`, on a thread of its own; the caller goes on meanwhile.
  Task<OpenResult> open(std::string name, LineSettings settings);
  /// After an open() that found no such port: tries it again until it is there, or until the next open() or
  /// close(). The event tells when it is open.
  void open_when_there() { reopen_.start(reopen(name_ + " is there and was opened.")); }
  /// Closes the port and gives up one that was lost. Resumes with true when it is closed, with false while a
  /// driver is still at it after kClosePatience; nobody need wait for that.
  Pending<bool> close();
  bool connected() const { return connected_; }
  /// The name last given to open().
  const std::string& name() const { return name_; }

  CommandLink& link() { return link_; }
  /// What the chip told of itself since the port was opened or came back; nothing where it told nothing.
  const std::optional<Greeting>& greeting() const { return greetings_.last(); }
  /// What is counted of the line since open(), over losses too.
  const LinkHealth& health() { return link_.health(); }
  RingQueue& receive_queue() { return port_.receive_queue(); }

 private:
  CommPortEvents port_events();
  void post_if_alive(std::function<void()> callback);
  void drain();
  void lost(unsigned epoch);
  void close_port(std::function<void()> closed);
  void set_connected(bool connected);
  std::function<void(bool)> tell_standstill();
  Task<OpenResult> open_port();
  void port_opened(const OpenResult& result, unsigned epoch);
  Task<> reopen(std::string text);

  Scheduler& scheduler_;
  PortSessionEvents events_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::atomic<bool> drain_posted_{false};
  std::string name_;
  LineSettings settings_;
  bool connected_ = false;
  bool lost_while_opening_ = false;
  bool opening_ = false;  ///< what arrives meanwhile stays in the receive queue
  unsigned epoch_ = 0;    // counts open(), close() and losses, to tell what late news belongs to
  std::atomic<unsigned> open_epoch_{0};  // of the open that the watcher serves
  CommandBuffer command_buffer_;
  CCommPort port_;
  PortSender sender_;
  CommandLink link_;
  GreetingListener greetings_;
  Flow reopen_;
  // Opens and closes in order: a driver may take its time for both.
  std::unique_ptr<WorkerThread> port_thread_ = std::make_unique<WorkerThread>();
};

}  // namespace qv5123
