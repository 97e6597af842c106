#include "provision/board_port.h"

#include "link/port_session.h"

namespace qv5123 {
namespace {

class SessionPort final : public BoardPort {
 public:
  SessionPort(Scheduler& scheduler, std::unique_ptr<SerialDevice> device, std::string name,
              const LineSettings& line)
      : name_(std::move(name)), line_(line), session_(scheduler, std::move(device), session_events()) {}

  const std::string& name() const override { return name_; }
  CommandLink& link() override { return session_.link(); }
  Task<OpenResult> open() override { co_return co_await session_.open(name_, line_); }
  void close() override { session_.close(); }
  bool connected() const override { return session_.connected(); }
  std::uint32_t baud_rate() const override { return line_.baud_rate; }

 private:
  PortSessionEvents session_events() {
    PortSessionEvents session;
    session.console = [this](const std::string& text) {
      if (events().console) events().console(text);
    };
    session.connected = [this](bool connected) {
      if (events().connected) events().connected(connected);
    };
    session.standstill = [this](bool stands) {
      if (events().trouble) events().trouble(standstill_text(name_, stands));
    };
    return session;
  }

  const std::string name_;
  const LineSettings line_;
  PortSession session_;
};

}  // namespace

std::unique_ptr<BoardPort> make_board_port(Scheduler& scheduler, std::unique_ptr<SerialDevice> device,
                                           std::string name, const LineSettings& line) {
  return std::make_unique<SessionPort>(scheduler, std::move(device), std::move(name), line);
}

}  // namespace qv5123
