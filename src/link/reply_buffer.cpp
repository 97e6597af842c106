#include "link/reply_buffer.h"

#include "link/reply_text.h"

namespace qv5123 {

std::string ReplyBuffer::decode(std::span<const std::uint8_t> received) {
  std::string console;
  for (const std::uint8_t byte : received) {
    switch (byte) {
      case 0x00:
        break;
      case '~':
        state_ = State::in_block;
        index_ = 0;
        received_ = 0;
        ++blocks_;
        break;
      case '^':
        if (state_ != State::in_block) break;
        state_ = State::complete;
        ++completed_;
        ++completed_of_[size()];
        break;
      case '$':
        state_ = State::abandoned;
        break;
      default:
        if (state_ == State::in_block) {
          store(static_cast<char>(byte));
        } else {
          console += static_cast<char>(byte);
        }
    }
  }
  return console;
}

void ReplyBuffer::store(char c) {
  text_[index_] = c;
  index_ = (index_ + 1) % kSize;
  ++received_;
}

std::optional<std::string> ReplyBuffer::take_block() {
  if (state_ != State::complete) return std::nullopt;
  state_ = State::idle;
  if (overran()) return std::nullopt;
  return std::string(text_.data(), size());
}

bool ReplyBuffer::damaged() const {
  return overran() || !whole_bytes({text_.data(), size()});
}

std::optional<int> ReplyBuffer::take_last_pair() {
  const auto pair = take_last_two();
  return pair ? std::optional(reply_byte_at(*pair, 0)) : std::nullopt;
}

std::optional<std::string> ReplyBuffer::take_last_two() {
  if (index_ < 2) return std::nullopt;
  index_ -= 2;
  return std::string(text_.data() + index_, 2);
}

void ReplyBuffer::forget() {
  state_ = State::idle;
  index_ = 0;
  received_ = 0;
  blocks_ = 0;
}

void ReplyBuffer::clear() {
  text_.fill(0);
  forget();
}

}  // namespace qv5123
