#include "link/port_session.h"

#include <utility>
#include <vector>

#include "base/delay.h"

namespace qv5123 {

PortSession::PortSession(Scheduler& scheduler, std::unique_ptr<SerialDevice> device, PortSessionEvents events,
                         CCommPort::Options options)
    : scheduler_(scheduler),
      events_(std::move(events)),
      port_(std::move(device), command_buffer_, port_events(), options),
      sender_(port_, command_buffer_, scheduler, tell_standstill()),
      link_(scheduler, sender_) {}

PortSession::~PortSession() {
  *alive_ = false;
  reopen_.cancel();
  sender_.end();
  port_thread_.reset();
  // Releases a write in progress, which the sending thread's end waits for.
  port_.close();
}

CommPortEvents PortSession::port_events() {
  CommPortEvents events;
  events.received = [this] {
    // One drain serves all that arrived before it runs.
    if (!drain_posted_.exchange(true)) post_if_alive([this] { drain(); });
  };
  events.lost = [this] { post_if_alive([this, epoch = open_epoch_.load()] { lost(epoch); }); };
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

std::string standstill_text(const std::string& port, bool stands) {
  constexpr auto kSeconds = std::chrono::duration_cast<std::chrono::seconds>(Standstill::kSaidAfter).count();
  if (!stands) return port + " takes bytes again.";
  return port + " has taken no byte for " + std::to_string(kSeconds) + " s.";
}

/// The sending thread posts it, so that it may outlive the session.
std::function<void(bool)> PortSession::tell_standstill() {
  return [this, alive = alive_](bool stands) {
    if (*alive && connected_ && events_.standstill) events_.standstill(stands);
  };
}

void PortSession::drain() {
  drain_posted_ = false;
  // What comes before the news that the port is open waits for it: the news would drop it as another chip's.
  if (opening_) return;
  std::vector<std::uint8_t> bytes(port_.receive_queue().count());
  if (bytes.empty()) return;
  for (std::uint8_t& byte : bytes) port_.receive_queue().get(byte);
  greetings_.hear(bytes);
  const std::string text = link_.receive(bytes);
  if (!text.empty() && events_.console) events_.console(text);
}

void PortSession::set_connected(bool connected) {
  if (connected_ == connected) return;
  connected_ = connected;
  greetings_.forget();
  link_.connection_changed();
  if (events_.connected) events_.connected(connected);
}

Task<OpenResult> PortSession::open(std::string name, LineSettings settings) {
  close();
  name_ = name;
  settings_ = settings;
  link_.health() = LinkHealth(settings);
  const unsigned epoch = epoch_;
  OpenResult result = co_await open_port();
  if (result.ok() && epoch != epoch_) co_return OpenResult{OpenError::failed, name + " was closed again."};
  co_return result;
}

Task<OpenResult> PortSession::open_port() {
  Resolver<OpenResult> opened;
  lost_while_opening_ = false;
  opening_ = true;
  port_thread_->run([this, opened, name = name_, settings = settings_, epoch = epoch_] {
    // The watcher of an earlier open is gone by the time that this one's may look.
    port_.close();
    open_epoch_ = epoch;
    const OpenResult result = port_.open(name, settings);
    post_if_alive([this, opened, result, epoch] {
      port_opened(result, epoch);
      opened.resolve(result);
      // Behind whatever waits for the opening.
      post_if_alive([this] { drain(); });
    });
  });
  co_return co_await opened.pending();
}

void PortSession::port_opened(const OpenResult& result, unsigned epoch) {
  // Closed or opened anew meanwhile: that close is already on its way.
  if (epoch != epoch_) return;
  opening_ = false;
  if (!result.ok()) return;
  set_connected(true);
  // The watcher may have found the device gone before the news of its opening came here.
  if (lost_while_opening_) post_if_alive([this, epoch] { lost(epoch); });
}

void PortSession::close_port(std::function<void()> closed) {
  port_thread_->run([this, closed = std::move(closed)] {
    port_.close();
    if (closed) post_if_alive(closed);
  });
}

Pending<bool> PortSession::close() {
  ++epoch_;
  opening_ = false;
  reopen_.cancel();
  set_connected(false);
  Resolver<bool> closed;
  close_port([closed] { closed.resolve(true); });
  scheduler_.call_after(kClosePatience, [closed] { closed.resolve(false); });
  return closed.pending();
}

void PortSession::lost(unsigned epoch) {
  if (epoch != epoch_) return;
  if (!connected_) {
    lost_while_opening_ = true;
    return;
  }
  ++epoch_;
  close_port({});
  set_connected(false);
  if (events_.status) events_.status(name_ + " is gone. It is opened again when it comes back.");
  reopen_.start(reopen(name_ + " is back."));
}

Task<> PortSession::reopen(std::string text) {
  OpenError told = OpenError::not_found;
  while (true) {
    co_await Delay(scheduler_, kReopenEvery);
    const OpenResult result = co_await open_port();
    if (result.ok()) break;
    // It is back, but not ours: say what to do about it, once.
    if (result.error != told && events_.status) events_.status(result.text);
    told = result.error;
  }
  link_.health().reconnected();
  if (events_.status) events_.status(text);
}

}  // namespace qv5123
