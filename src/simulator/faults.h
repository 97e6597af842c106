#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

using TimePoint = std::chrono::steady_clock::time_point;

/// How likely each byte on the line is to suffer, 0 never to 1 always.
struct FaultRates {
  double drop = 0;       ///< the byte is lost
  double corrupt = 0;    ///< one bit of it is flipped
  double duplicate = 0;  ///< it comes twice
  double delay = 0;      ///< it and what follows is held up for 10 to 400 ms
  double hangup = 0;     ///< the line breaks here
  friend bool operator==(const FaultRates&, const FaultRates&) = default;

  bool any() const { return *this != FaultRates{}; }
};

/// Sets one rate from a text "KIND=RATE". Returns what is wrong with the text, empty when nothing is; `rates`
/// is then unchanged.
std::string parse_fault(std::string_view text, FaultRates& rates);

/// One direction of a bad line. Bytes are put in, and taken out by those to whom they come; the same seed
/// spoils the same bytes.
class FaultInjector {
 public:
  FaultInjector(const FaultRates& rates, std::uint64_t seed) : rates_(rates), random_(seed) {}

  void put(std::span<const std::uint8_t> bytes, TimePoint now);
  /// What has arrived by `now`.
  std::vector<std::uint8_t> take(TimePoint now);
  /// When the next byte arrives, if one is under way.
  std::optional<TimePoint> next() const;
  /// True once after the line broke. What was under way is lost.
  bool take_hangup();
  void clear();

 private:
  struct Byte {
    std::uint8_t value;
    TimePoint due;
  };
  void put_byte(std::uint8_t byte, TimePoint now);
  bool happens(double rate);

  FaultRates rates_;
  std::mt19937_64 random_;
  std::deque<Byte> under_way_;
  TimePoint last_due_{};
  bool hung_up_ = false;
};

}  // namespace qv5123
