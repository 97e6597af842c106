#include "support/bench_client_win32.h"
// Winsock must come first.
#include "support/board_cable.h"

namespace qv5123::test {

/// The two ports stay connected as long as the client does.
struct BoardCable::Ends {
  BenchClient client;
};

BoardCable::BoardCable() : ends_(std::make_unique<Ends>()) {
  ends_->client.ask("cross com5 com12");
}
BoardCable::~BoardCable() = default;

std::string BoardCable::port() {
  return "COM5";
}

std::vector<std::string> BoardCable::simulator_options() {
  return {"--port", "COM12"};
}

}  // namespace qv5123::test
