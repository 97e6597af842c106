#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qv5123 {

/// The chip's side of a block transfer: header (number of 256-byte blocks, 0), the blocks, and one byte that
/// is the XOR of everything before it.
class BlockReceiver {
 public:
  static constexpr std::size_t kBlockSize = 256;
  enum class Status {
    more,        ///< goes on
    bad_header,  ///< the second byte is not 0: this is no transfer, header() holds the two bytes
    complete,    ///< the checksum fits
    mismatch     ///< the checksum does not fit
  };

  /// Takes the next byte. After anything but Status::more the transfer is over.
  Status feed(std::uint8_t byte) {
    if (received_ < 2) return feed_header(byte);
    if (data_.size() == block_count() * kBlockSize) {
      return byte == checksum_ ? Status::complete : Status::mismatch;
    }
    data_.push_back(byte);
    checksum_ ^= byte;
    return Status::more;
  }

  /// True once the header has been taken, when silence means that the sender has gone.
  bool in_data() const { return received_ >= 2; }
  std::size_t block_count() const { return header_[0]; }
  std::size_t blocks_received() const { return data_.size() / kBlockSize; }
  std::uint8_t expected_checksum() const { return checksum_; }
  const std::uint8_t (&header() const)[2] { return header_; }
  const std::vector<std::uint8_t>& data() const { return data_; }

 private:
  Status feed_header(std::uint8_t byte) {
    header_[received_++] = byte;
    checksum_ ^= byte;
    return received_ == 2 && byte != 0 ? Status::bad_header : Status::more;
  }

  std::uint8_t header_[2] = {};
  std::size_t received_ = 0;
  std::uint8_t checksum_ = 0;
  std::vector<std::uint8_t> data_;
};

}  // namespace qv5123
