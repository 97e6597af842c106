#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "reliability/ui/matrix_bench.h"

namespace qv5123::matrix {

using test::MatrixBench;

/// What came of an operation: all of it was done, or the user was told that it was not; where it is read
/// back, done means that it was verified, and what differs, or that nothing can be said, are ends of their
/// own.
enum class End { none, done, told, differs, unverified };
inline constexpr std::size_t kEnds = 5;

using Step = std::function<void(MatrixBench&)>;
inline constexpr auto nothing = [](auto&&...) {};

/// An operation of the user's; one row of the matrix.
struct Operation {
  std::string name;
  PageId page = PageId::registers;
  Step prepare = nothing;
  Step start{};
  std::function<End(MatrixBench&)> end{};
  /// Called on a page that was loaded, or to which nothing is to have happened; looks whether that is so.
  std::function<void(MatrixBench&, End, const std::string& before)> check = nothing;
  /// Looks, on a good line, whether what was said to be done is: the chip has what it was given, the page
  /// what the chip has.
  Step arrived = nothing;
  /// It is read back, so that what is said to be done is done on every line.
  bool proven = false;
  /// Asks again and again, for as long as the chip does not answer.
  bool patient = false;
  /// Takes a short reply, as which any babble of the chip's may pass.
  bool credulous = false;
  /// At which the line's faults strike each byte.
  double rate = 0.01;
  std::chrono::seconds most{60};
};

inline void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

/// All that talks to the chip.
std::vector<Operation> operations();

}  // namespace qv5123::matrix
