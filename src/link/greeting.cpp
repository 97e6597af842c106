#include "link/greeting.h"

#include "base/text.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

constexpr std::size_t kVersionDigits = 18;
constexpr std::size_t kSerialDigits = 9;
static_assert(kGreetingDigits == 2 * (kVersionDigits + kSerialDigits));

}  // namespace

bool is_greeting(std::string_view block) {
  return block.size() == kGreetingDigits && all_hex_digits(block);
}

std::optional<Greeting> greeting_of(std::string_view block) {
  if (!is_greeting(block)) return std::nullopt;
  Greeting greeting;
  std::size_t digit = 0;
  for (auto& version : greeting.versions)
    for (int& number : version) {
      const int tens = reply_byte(block, digit++) % 10;
      number = 10 * tens + reply_byte(block, digit++) % 10;
    }
  std::string serial;
  for (std::size_t i = 0; i < kSerialDigits; ++i)
    serial += static_cast<char>(reply_byte(block, kVersionDigits + i));
  // A zero ends the string, as it ends every formatted text.
  greeting.serial_number = latin1_to_utf8(std::string_view(serial).substr(0, serial.find('\0')));
  return greeting;
}

void GreetingListener::hear(std::span<const std::uint8_t> received) {
  // One by one: a greeting may share what was received with the answer behind it.
  for (std::size_t i = 0; i < received.size(); ++i) {
    reply_.decode(received.subspan(i, 1));
    const std::optional<std::string> block = reply_.take_block();
    if (std::optional<Greeting> greeting = block ? greeting_of(*block) : std::nullopt)
      last_ = std::move(greeting);
  }
}

}  // namespace qv5123
