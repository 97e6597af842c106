#include "link/port_session.h"

#include <utility>
#include <vector>

namespace qv5123 {

PortSession::PortSession(Scheduler& scheduler, std::unique_ptr<SerialDevice> device, PortSessionEvents events,
                         CCommPort::Options options)
    : scheduler_(scheduler),
      events_(std::move(events)),
      port_(std::move(device), command_buffer_, port_events(), options),
      sender_(port_, command_buffer_, scheduler),
      link_(scheduler, sender_) {}

PortSession::~PortSession() {
  *alive_ = false;
  reopen_.cancel();
  sender_.end();
  // A write in progress returns only when the port closes. While the sending thread is opening it, nothing
  // is being written, and the port closes with its own end.
  if (opening_ == 0) port_.close();
}

CommPortEvents PortSession::port_events() {
  CommPortEvents events;
  events.received = [this] {
    // One drain serves all that arrived before it runs.
    if (!drain_posted_.exchange(true)) post_if_alive([this] { drain(); });
  };
  events.lost = [this] { post_if_alive([this] { lost(); }); };
  events.trouble = [this](const std::string& text) {
    post_if_alive([this, text] {
      if (events_.trouble) events_.trouble(text);
    });
  };
  return events;
}

void PortSession::post_if_alive(std::function<void()> callback) {
  scheduler_.post([alive = alive_, callback = std::move(callback)] {
    if (*alive) callback();
  });
}

void PortSession::drain() {
  drain_posted_ = false;
  std::vector<std::uint8_t> bytes(port_.receive_queue().count());
  if (bytes.empty()) return;
  for (std::uint8_t& byte : bytes) port_.receive_queue().get(byte);
  const std::string text = link_.receive(bytes);
  if (!text.empty() && events_.console) events_.console(text);
}

void PortSession::set_connected(bool connected) {
  if (connected_ == connected) return;
  connected_ = connected;
  if (events_.connected) events_.connected(connected);
}

Task<OpenResult> PortSession::open(std::string name, LineSettings settings) {
  close();
  name_ = std::move(name);
  settings_ = settings;
  const unsigned epoch = epoch_;
  OpenResult result = co_await open_on_sending_thread();
  if (result.ok() && epoch != epoch_) co_return OpenResult{OpenError::failed, name_ + " was closed again."};
  co_return result;
}

Task<OpenResult> PortSession::open_on_sending_thread() {
  const unsigned epoch = epoch_;
  Resolver<OpenResult> opened;
  ++opening_;
  sender_.run([this, alive = alive_, opened, name = name_, settings = settings_, epoch] {
    const OpenResult result = port_.open(name, settings);
    scheduler_.post([this, alive, opened, result, epoch] {
      if (!*alive) return;
      --opening_;
      if (result.ok() && epoch == epoch_) set_connected(true);
      // Closed while it was being opened; a later open closes it by itself.
      if (epoch != epoch_ && opening_ == 0) port_.close();
      opened.resolve(result);
    });
  });
  co_return co_await opened.pending();
}

void PortSession::close() {
  ++epoch_;
  reopen_.cancel();
  if (opening_ == 0) port_.close();
  set_connected(false);
}

void PortSession::lost() {
  if (!connected_) return;
  ++epoch_;
  port_.close();
  set_connected(false);
  if (events_.status) events_.status(name_ + " is gone. It is opened again when it comes back.");
  reopen_.start(reopen());
}

Task<> PortSession::reopen() {
  while (true) {
    co_await Delay(scheduler_, kReopenEvery);
    const OpenResult result = co_await open_on_sending_thread();
    if (!result.ok()) continue;
    if (events_.status) events_.status(name_ + " is back.");
    co_return;
  }
}

}  // namespace qv5123
