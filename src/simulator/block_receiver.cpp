#include "simulator/block_receiver.h"

namespace qv5123 {

BlockReceiver::Status BlockReceiver::feed(std::uint8_t byte) {
  if (received_ < 2) return feed_header(byte);
  if (data_.size() == block_count() * kBlockSize) {
    return byte == checksum_ ? Status::complete : Status::mismatch;
  }
  data_.push_back(byte);
  checksum_ ^= byte;
  return Status::more;
}

BlockReceiver::Status BlockReceiver::feed_header(std::uint8_t byte) {
  header_[received_++] = byte;
  checksum_ ^= byte;
  return received_ == 2 && byte != 0 ? Status::bad_header : Status::more;
}

}  // namespace qv5123
