#include "tuning/raw_access.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <vector>

#include "base/hex.h"
#include "link/indirect_access.h"
#include "link/reply_buffer.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

/// One digit for each character of UTF-8 text, however many bytes the character has.
std::vector<int> digits_of(std::string_view text) {
  std::vector<int> digits;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool continuation = (byte & 0xC0) == 0x80;
    if (!continuation) digits.push_back(hex_value(byte));
  }
  return digits;
}

int leading_digits(std::string_view text, std::size_t count) {
  std::vector<int> digits = digits_of(text);
  digits.resize(count, 0);
  int value = 0;
  for (const int digit : digits) value = value * 16 + digit;
  return value;
}

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
  std::array<char, 100> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text.data();
}

constexpr int shown_isp_address(int address) {
  return 0xF000 | (address & 0xFFF);
}

constexpr unsigned shown_address(Access access, int address) {
  return static_cast<unsigned>(access == Access::Sensor ? address & 0xFFFF : shown_isp_address(address));
}

constexpr std::size_t answer_digits(Access access) {
  return access == Access::IspByte ? 2 : 4;
}

/// The answer's digits are the last of the reply, whatever came before them.
std::optional<int> answer_value(Access access, std::string_view reply) {
  const std::size_t digits = answer_digits(access);
  if (reply.size() < digits || !whole_bytes(reply)) return std::nullopt;
  const std::size_t position = reply.size() - digits;
  return digits == 2 ? reply_byte_at(reply, position) : reply_word_at(reply, position);
}

struct Click {
  int number;
  bool set;
};
constexpr std::array<Click, 6> kServiceClicks{
    {{7, true}, {0, true}, {7, false}, {3, true}, {0, false}, {3, false}}};
constexpr int kServiceAddress = 0x5C1;

constexpr bool matches(std::size_t place, int number, bool set) {
  return place < kServiceClicks.size() && kServiceClicks[place].number == number &&
         kServiceClicks[place].set == set;
}

}  // namespace

int byte_of_field(std::string_view text) {
  return leading_digits(text, 2);
}

int address_of_field(std::string_view text) {
  return leading_digits(text, 3);
}

int word_of_field(std::string_view text) {
  const std::size_t length = digits_of(text).size();
  return length >= 2 && length <= 4 ? leading_digits(text, length) : 0;
}

std::string field_of_byte(int value) {
  return formatted("%02X", static_cast<unsigned>(low_byte(value)));
}

OneByteWrite write_one_byte(int address, int value) {
  if (address == kFrontGammaAddress) return {{}, static_cast<double>(low_byte(value))};
  return {isp_write(address, value), std::nullopt};
}

Traffic edit_bit(int address, std::uint8_t& byte, int number, bool set) {
  if (address == 0 || number < 0 || number > 7) return {};
  const int mask = 1 << number;
  byte = low_byte(set ? byte | mask : byte & ~mask);
  // The address goes ahead in a flush of its own, unlike in the other writes of the page.
  Batch to_address = isp_write(address, byte);
  const Batch to_data{to_address.back()};
  to_address.pop_back();
  return {to_address, to_data};
}

std::string bit_editor_text(std::uint8_t byte) {
  return formatted("%x ", static_cast<unsigned>(byte));
}

std::string sensor_write_text(int address, int value) {
  return formatted("\r\nSensor Write :\r\n0x%04x, %04d (0x%04x, 0x%04x)", static_cast<unsigned>(address),
                   value, static_cast<unsigned>(address), static_cast<unsigned>(value));
}

std::string answer_text(Access access, int address, std::string_view reply) {
  const auto value = answer_field(access, reply);
  if (!value) return {};
  return formatted("0x%04X = 0x%s\r\n", shown_address(access, address), value->c_str());
}

std::string no_answer_text(Access access, int address) {
  return formatted("No answer from 0x%04X", shown_address(access, address));
}

std::optional<std::string> answer_field(Access access, std::string_view reply) {
  const auto value = answer_value(access, reply);
  if (!value) return std::nullopt;
  return formatted("%0*X", static_cast<int>(answer_digits(access)), static_cast<unsigned>(*value));
}

std::string dump_text(int start, int end, std::string_view reply) {
  if (!whole_bytes(reply))
    return formatted("Dump 0x%04X..0x%04X: the answer is damaged.\r\n", shown_isp_address(start),
                     shown_isp_address(end));
  std::string text;
  for (std::size_t i = 0; 2 * i + 1 < reply.size(); ++i)
    text += formatted("0x%04X = 0x%02X\r\n", shown_isp_address(start + static_cast<int>(i)),
                      reply_byte(reply, i));
  return text;
}

std::string overlong_dump_text(int start, int end) {
  constexpr int kMostRegisters = ReplyBuffer::kSize / 2;
  return formatted("Dump 0x%04X..0x%04X: the answer is too long, it can hold %d registers.\r\n",
                   shown_isp_address(start), shown_isp_address(end), kMostRegisters);
}

void ServiceGesture::click(int number, bool set) {
  if (matches(matched_, number, set))
    ++matched_;
  else
    matched_ = matches(0, number, set) ? 1 : 0;
}

bool ServiceGesture::get_info(int address) {
  const bool reveal = matched_ == kServiceClicks.size() && address == kServiceAddress;
  matched_ = 0;
  return reveal;
}

}  // namespace qv5123
