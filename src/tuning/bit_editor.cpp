#include "tuning/bit_editor.h"

#include <array>
#include <chrono>
#include <utility>

#include "link/indirect_access.h"
#include "link/reply_text.h"
#include "tuning/raw_access.h"

namespace qv5123 {
namespace {

/// How long "Get Info" leaves the chip for its answer.
constexpr std::chrono::milliseconds kInfoWait{100};

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

std::optional<std::uint8_t> BitEditor::bits() const {
  return known_ ? std::optional(byte_) : std::nullopt;
}

void BitEditor::type_address(std::string_view text) {
  const int address = address_of_field(text);
  if (address != std::exchange(address_, address)) forget();
}

void BitEditor::forget() {
  known_ = false;
  view_->show_bits();
}

void BitEditor::click(int number, bool set) {
  gesture_.click(number, set);
  if (known_) {
    Traffic traffic = edit_bit(address_, byte_, number, set);
    const std::string name = access_name(Access::isp_byte, address_) + " bit " + std::to_string(number);
    if (!traffic.empty()) host_.send_and_tell(name, std::move(traffic));
  } else if (address_ != 0) {
    host_.show_failure(unread_bits_text(address_));
  }
  view_->show_bits();
}

void BitEditor::press_get_info() {
  if (gesture_.get_info(address_)) area_.reveal();
  flows_.spawn(get_info(address_));
}

Task<> BitEditor::get_info(int address) {
  // A block too short for a byte, or damaged, must not become one: the next click on a bit would write it
  // back.
  const auto reply = co_await host_.link().query(isp_read_request(address), kInfoWait);
  if (reply && reply->size() >= 2 && whole_bytes(*reply)) {
    take(address, reply_byte(*reply, 0));
    host_.show_status(access_name(Access::isp_byte, address) + ": 0x" + field_of_byte(byte_));
  } else {
    host_.show_failure(no_answer_text(Access::isp_byte, address));
    if (address == address_) forget();
  }
  area_.append(bit_editor_text(byte_));
}

/// The address may have been typed over since it was asked for.
void BitEditor::take(int address, std::uint8_t byte) {
  byte_ = byte;
  known_ = address == address_;
  view_->show_bits();
}

}  // namespace qv5123
