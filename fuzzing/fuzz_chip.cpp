// What may come over the line to the simulated chip, whole, cut or spoiled.
#include "fuzz_input.h"
#include "simulator/board_line.h"
#include "simulator/simulated_chip.h"

using namespace qv5123;
using namespace std::chrono_literals;

namespace {

/// The first byte says what the line does to what follows.
LineOptions line_options(std::uint8_t choice) {
  LineOptions options;
  options.line_rate = choice & 1 ? 19200 : 0;
  if (choice & 2) options.faults.drop = 0.05;
  if (choice & 4) options.faults.corrupt = 0.05;
  if (choice & 8) options.faults.duplicate = 0.05;
  if (choice & 16) options.faults.delay = 0.05;
  if (choice & 32) options.faults.hangup = 0.005;
  return options;
}

constexpr std::chrono::milliseconds kSilences[] = {0ms, 1ms, 31ms, 2001ms};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Pieces pieces(data, size);
  SimulatedChip chip;
  BoardLine line(chip, line_options(pieces.byte()));
  TimePoint now{1h};
  line.plug_in();
  line.host_opened(now);
  while (pieces.left()) {
    now += kSilences[pieces.byte() % 4];
    const auto piece = pieces.next();
    line.put(piece.first(std::min(piece.size(), line.room())), now);
    line.take(now);
    if (line.take_hangup()) line.plug_in();
    if (const auto next = line.next(now)) fuzz::require(*next > TimePoint{}, "time does not run away");
  }
  // Given time everything ends, but for a command letter: the chip waits for the image until the next bytes
  // prove to be none.
  for (int i = 0; i < 10; ++i) line.take(now += 3s);
  chip.receive(std::vector<std::uint8_t>{'*', '*'});
  fuzz::require(!chip.transfer_open(), "a transfer is given up");
  chip.receive(std::vector<std::uint8_t>{'@', '3', '7', '1', '1', '*', '@', '3', '7', '5', 'a', '*'});
  fuzz::require(chip.direct(0x37) == 0x5A, "the chip listens afterwards");
  return 0;
}
