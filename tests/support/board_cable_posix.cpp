#include "support/board_cable.h"

namespace qv5123::test {

/// The simulated board brings its own pseudo-terminal.
struct BoardCable::Ends {};

BoardCable::BoardCable() = default;
BoardCable::~BoardCable() = default;

std::string BoardCable::port() {
  return "board";
}

std::vector<std::string> BoardCable::simulator_options() {
  return {"--link", port()};
}

}  // namespace qv5123::test
