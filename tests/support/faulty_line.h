#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "simulator/board_line.h"
#include "support/fake_wire.h"

namespace qv5123::test {

using namespace std::chrono_literals;

/// What a line or a chip does to those who rely on it.
struct Fault {
  const char* name;
  FaultRates rates;            ///< of every byte, either way
  bool unplug = false;         ///< the board is pulled out and plugged in again
  std::size_t flood_step = 0;  ///< bytes that the chip says every 5 ms unasked
  bool silent = false;         ///< the chip never answers

  /// Whether bytes arrive as others than were sent, which nobody can tell where nothing is acknowledged.
  bool spoils_bytes() const { return rates.drop + rates.corrupt + rates.duplicate > 0; }
};

/// The faults of the matrix, which strike every byte at this rate. One byte in a hundred spoils about every
/// third reply of a short page and nearly every one of a long page.
inline std::vector<Fault> faults(double rate = 0.01) {
  return {{"drop", {.drop = rate}},   {"corrupt", {.corrupt = rate}},     {"duplicate", {.duplicate = rate}},
          {"delay", {.delay = rate}}, {"hangup", {.hangup = 0.3 * rate}}, {"unplug and return", {}, true},
          {"flood", {}, false, 20},   {"no answer", {}, false, 0, true}};
}

/// A fake wire with the simulated chip at its far end, behind a line with faults, all on the hand-moved
/// clock. A board that is gone makes writes fail, is back after a second and is then found as the program
/// finds it.
class FaultyLine {
 public:
  explicit FaultyLine(FakeWire& wire) : wire_(wire) {
    renew({}, 1);
    wire_.sender.chip = [this](const std::string& bytes) { take(bytes); };
    tick();
  }

  /// From now on the line has this fault.
  void suffer(const Fault& fault, std::uint64_t seed) {
    LineOptions options;
    options.faults = fault.rates;
    renew(options, seed);
    silent_ = fault.silent;
    flood_step_ = fault.flood_step;
    // Before the first byte leaves, before a page looks for its reply, and later.
    static constexpr std::chrono::milliseconds kPulled[] = {45ms, 200ms, 700ms};
    if (fault.unplug) lose_at_ = wire_.scheduler.now() + kPulled[seed % 3];
  }
  /// No more faults; what was lost is back. A chip that was made to wait for an image, and is fed with
  /// commands instead, is pulled out and plugged in.
  void cure() {
    silent_ = false;
    flood_step_ = 0;
    lose_at_.reset();
    wire_.advance(3000);
    renew({}, 1);
    wire_.advance(3000);
    if (chip_.transfer_open()) lose();
    wire_.advance(3000);
  }

  SimulatedChip& chip() { return chip_; }
  /// Complete reply blocks that came in since the last call, without their marks.
  std::vector<std::string> take_blocks() { return std::exchange(blocks_, {}); }
  /// What the program is told of the chip's texts. May be empty.
  std::function<void(const std::string&)> on_text;

 private:
  static constexpr std::chrono::milliseconds kTick{5};
  static constexpr std::chrono::milliseconds kAway{1200};

  TimePoint now() const { return TimePoint{std::chrono::hours(1)} + wire_.scheduler.now(); }

  void renew(LineOptions options, std::uint64_t seed) {
    options.seed = seed;
    random_.seed(seed);
    line_.emplace(chip_, options);
    if (!powered_) line_->plug_in();
    powered_ = true;
  }

  void tick() {
    wire_.scheduler.call_after(kTick, [this] { tick(); });
    if (lose_at_ && wire_.scheduler.now() >= *lose_at_) lose();
    if (back_at_ && wire_.scheduler.now() >= *back_at_) come_back();
    if (!back_at_) pump();
  }

  void take(const std::string& bytes) {
    line_->put({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, now());
    pump();
  }

  void pump() {
    auto bytes = line_->take(now());
    if (silent_) bytes.clear();
    for (std::size_t i = 0; i < flood_step_; ++i) bytes.push_back(babble());
    note_blocks(bytes);
    const std::string text = wire_.link.receive(bytes);
    if (on_text && !text.empty()) on_text(text);
    if (line_->take_hangup()) lose();
  }

  /// Text and marks in a mixture that makes many short blocks.
  std::uint8_t babble() {
    static constexpr std::string_view kLetters = "0123456789abcdefgh ~^\n\xe4%s<b>";
    return static_cast<std::uint8_t>(kLetters[random_() % kLetters.size()]);
  }

  void note_blocks(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
      shadow_.decode({&byte, 1});
      if (auto block = shadow_.take_block()) blocks_.push_back(std::move(*block));
    }
  }

  void lose() {
    lose_at_.reset();
    back_at_ = wire_.scheduler.now() + kAway;
    wire_.sender.connected = false;
    wire_.link.connection_changed();
  }
  void come_back() {
    back_at_.reset();
    line_->plug_in();
    shadow_.clear();
    wire_.sender.connected = true;
    wire_.link.connection_changed();
  }

  FakeWire& wire_;
  SimulatedChip chip_;
  std::optional<BoardLine> line_;
  std::mt19937_64 random_;
  ReplyBuffer shadow_;
  std::vector<std::string> blocks_;
  std::optional<std::chrono::milliseconds> lose_at_;
  std::optional<std::chrono::milliseconds> back_at_;
  std::size_t flood_step_ = 0;
  bool silent_ = false;
  bool powered_ = false;
};

}  // namespace qv5123::test
