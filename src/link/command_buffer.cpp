#include "link/command_buffer.h"

namespace qv5123 {

bool CommandBuffer::append_register_write(std::uint8_t address, std::uint8_t value) {
  const std::string text = frame({address, value});
  if (bytes_.size() + text.size() > kCapacity) return false;
  bytes_.insert(bytes_.end(), text.begin(), text.end());
  return true;
}

}  // namespace qv5123
