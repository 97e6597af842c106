#include "tuning/raw_access.h"

#include <algorithm>
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

constexpr int shown_isp_address(int address) {
  return 0xF000 | (address & 0xFFF);
}

std::string shown(int address) {
  return "0x" + upper_hex(static_cast<unsigned>(address), 4);
}

std::string shown(Access access, int address) {
  return shown(access == Access::sensor ? address & 0xFFFF : shown_isp_address(address));
}

std::string shown_dump(int start, int end) {
  return "Dump " + shown(shown_isp_address(start)) + ".." + shown(shown_isp_address(end)) + ": ";
}

constexpr std::size_t answer_digits(Access access) {
  return access == Access::isp_byte ? 2 : 4;
}

/// The answer's digits are the last of the reply, whatever came before them.
std::optional<int> answer_value(Access access, std::string_view reply) {
  const std::size_t digits = answer_digits(access);
  if (reply.size() < digits || !whole_bytes(reply)) return std::nullopt;
  const std::size_t position = reply.size() - digits;
  return digits == 2 ? reply_byte_at(reply, position) : reply_word_at(reply, position);
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

bool reads_as_typed(HexForm form, std::string_view text) {
  const bool digits = std::all_of(text.begin(), text.end(), [](char c) {
    return c == '0' || hex_value(static_cast<unsigned char>(c)) != 0;
  });
  const std::size_t least = form == HexForm::address ? 3 : 2;
  const std::size_t most = form == HexForm::word ? 4 : least;
  return digits && text.size() >= least && text.size() <= most;
}

std::string field_of_byte(int value) {
  return upper_hex(low_byte(value));
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

std::string unread_bits_text(int address) {
  return "The bits of " + shown(Access::isp_byte, address) + " are not known: press \"Get Info\" first.";
}

std::string bit_editor_text(std::uint8_t byte) {
  return lower_hex(byte, byte > 0xF ? 2 : 1) + " ";
}

std::string sensor_write_text(int address, int value) {
  const std::string register_name = "0x" + lower_hex(static_cast<unsigned>(address), 4);
  const std::string hex = "0x" + lower_hex(static_cast<unsigned>(value), 4);
  std::string decimal = std::to_string(value);
  if (decimal.size() < 4) decimal.insert(0, 4 - decimal.size(), '0');
  return "\r\nSensor Write :\r\n" + register_name + ", " + decimal + " (" + register_name + ", " + hex + ")";
}

Batch read_request(Access access, int address) {
  if (access == Access::isp_byte) return isp_read_request(address);
  return access == Access::isp_word ? isp_wide_read_request(address) : sensor_read_request(address);
}

std::string access_name(Access access, int address) {
  return shown(access, address);
}

std::string answer_text(Access access, int address, std::string_view reply) {
  const auto value = answer_field(access, reply);
  if (!value) return {};
  return shown(access, address) + " = 0x" + *value + "\r\n";
}

std::string no_answer_text(Access access, int address) {
  return "No answer from " + shown(access, address);
}

std::optional<std::string> answer_field(Access access, std::string_view reply) {
  const auto value = answer_value(access, reply);
  if (!value) return std::nullopt;
  return upper_hex(static_cast<unsigned>(*value), answer_digits(access));
}

std::string dump_text(int start, int end, std::string_view reply) {
  if (!whole_bytes(reply)) return shown_dump(start, end) + "the answer is damaged.\r\n";
  std::string text;
  for (std::size_t i = 0; 2 * i + 1 < reply.size(); ++i)
    text += shown(shown_isp_address(start + static_cast<int>(i))) + " = 0x" +
            field_of_byte(reply_byte(reply, i)) + "\r\n";
  return text;
}

std::string overlong_dump_text(int start, int end) {
  constexpr int kMostRegisters = ReplyBuffer::kSize / 2;
  return shown_dump(start, end) + "the answer is too long, it can hold " + std::to_string(kMostRegisters) +
         " registers.\r\n";
}

}  // namespace qv5123
