#include "link/register_write.h"

#include <iterator>

#include "base/hex.h"

namespace qv5123 {

Batch word_write(std::uint8_t address, int value) {
  return {{address, high_byte(value)}, {address, low_byte(value)}};
}

Traffic flushed_singly(const Batch& writes) {
  Traffic traffic;
  traffic.reserve(writes.size());
  for (const RegisterWrite& write : writes) traffic.push_back({write});
  return traffic;
}

void append(Traffic& traffic, Traffic more) {
  traffic.insert(traffic.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

void append(Traffic& traffic, RegisterWrite write) {
  traffic.push_back({write});
}

std::string frame(RegisterWrite write) {
  return '@' + lower_hex(write.address) + lower_hex(write.value) + '*';
}

std::string frames(const Batch& batch) {
  std::string text;
  text.reserve(batch.size() * 6);
  for (const RegisterWrite& write : batch) text += frame(write);
  return text;
}

}  // namespace qv5123
