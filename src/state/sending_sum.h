#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "link/register_write.h"

namespace qv5123 {

/// How much is to be sent, for who is asked before.
struct SendingSum {
  std::size_t writes = 0;   ///< of registers
  std::size_t flushes = 0;  ///< the port waits before each
  /// What a write takes on the line; as it stands at the usual 19200 baud.
  std::chrono::duration<double> frame = std::chrono::microseconds(3125);

  void add(const Traffic& traffic);
};

/// "12 register writes, in some 0.1 s".
std::string sending_text(const SendingSum& sum);

/// What a question names of what is to be sent: the first of the texts, a line each, and how many more.
std::string named_texts(const std::vector<std::string>& texts);

}  // namespace qv5123
