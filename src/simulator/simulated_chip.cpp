#include "simulator/simulated_chip.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/hex.h"
#include "link/indirect_access.h"
#include "simulator/camera_registers.h"
#include "simulator/chip_defaults.h"
#include "simulator/chip_texts.h"
#include "simulator/settings_registers.h"

namespace qv5123 {
namespace {

constexpr std::uint8_t kAeInfo = 0xA2;
constexpr std::uint8_t kAwbInfo = 0xA5;
constexpr std::uint8_t kCopyToFactory = 0xBF;
constexpr std::uint8_t kFlashBegin = 0xDD;
constexpr std::uint8_t kFlashByte = 0xDE;
constexpr std::uint8_t kFlashMask = 0xDF;
constexpr std::uint8_t kFlashBlock = 0xE0;
constexpr std::size_t kFlashPage = 256;

constexpr std::uint16_t kCommandRegister = 0x922;
constexpr std::uint8_t kFactoryResetCommand = 0xCC;

/// What the chip has to say waits here for the line; what does not fit is lost, as in any UART.
constexpr std::size_t kOutputLimit = 1 << 20;

std::string_view image_name(CommandLetter letter) {
  switch (letter) {
    case CommandLetter::firmware:
      return "Firmware";
    case CommandLetter::font:
      return "Font";
    default:
      return "User data";
  }
}

std::string blocks_text(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " block" : " blocks");
}

std::string isp_name(std::uint16_t address) {
  return "ISP 0xF" + upper_hex(address, 3);
}

std::string hex_byte(unsigned value) {
  return "0x" + upper_hex(value);
}

std::string hex_word(unsigned value) {
  return "0x" + upper_hex(value, 4);
}

/// Registers that the flash holds valid values for start with those.
void load_flash_registers(ChipState& chip) {
  for (std::size_t i = 0; i < ChipState::kFlashWindow; ++i) {
    const bool valid = (chip.flash_mask[i / 8] >> (i % 8) & 1) != 0;
    if (valid) chip.isp[ChipState::kIspSize - ChipState::kFlashWindow + i] = chip.flash_registers[i];
  }
}

}  // namespace

SimulatedChip::SimulatedChip() {
  state_.factory_data = factory_user_data();
  state_.kept_data = state_.factory_data;
  state_.user_data = state_.kept_data;
  reset_registers(state_);
  load_setting_registers(state_);
}

void SimulatedChip::power_on() {
  parser_.reset();
  run_.reset();
  ports_ = {};
  transfer_.reset();
  flash_page_.clear();
  output_.clear();
  state_.frames = 0;
  state_.awb_mark = AwbMark::none;
  state_.user_data = state_.kept_data;
  reset_registers(state_);
  if (camera_) fit_module(*camera_, state_);
  load_setting_registers(state_);
  load_flash_registers(state_);
  announce();
}

void SimulatedChip::announce() {
  say(boot_banner(state_));
  reply(version_reply(state_));
}

void SimulatedChip::set_camera(const Camera& camera) {
  camera_ = camera;
  fit_module(camera, state_);
}

void SimulatedChip::look() {
  if (camera_) measure(*camera_, state_);
}

void SimulatedChip::receive(std::span<const std::uint8_t> bytes) {
  for (const std::uint8_t byte : bytes) take_byte(byte);
}

void SimulatedChip::line_quiet(std::chrono::milliseconds silence) {
  if (silence >= kAddressPatience && is_port(run_.address())) run_.reset();
  if (silence >= kTransferPatience && transfer_ && transfer_->blocks.in_data()) {
    const BlockReceiver& blocks = transfer_->blocks;
    say("\r\n" + std::string(image_name(transfer_->letter)) + ": given up after " +
        std::to_string(blocks.blocks_received()) + " of " + blocks_text(blocks.block_count()) +
        ", old image kept\r\n");
    transfer_.reset();
  }
}

std::vector<std::uint8_t> SimulatedChip::take_output() {
  return std::exchange(output_, {});
}

void SimulatedChip::take_byte(std::uint8_t byte) {
  if (transfer_) {
    take_transfer_byte(byte);
    return;
  }
  const auto command = parser_.feed(byte);
  if (!command) return;
  if (const auto* write = std::get_if<RegisterWrite>(&*command)) take_frame(*write);
  if (const auto* letter = std::get_if<CommandLetter>(&*command)) take_letter(*letter);
}

void SimulatedChip::take_transfer_byte(std::uint8_t byte) {
  const BlockReceiver& blocks = transfer_->blocks;
  switch (transfer_->blocks.feed(byte)) {
    case BlockReceiver::Status::more:
      if (blocks.in_data() && blocks.data().empty())
        trace("  " + blocks_text(blocks.block_count()) + " announced");
      break;
    case BlockReceiver::Status::bad_header:
      reject_transfer();
      break;
    case BlockReceiver::Status::complete:
      finish_transfer(true, byte);
      break;
    case BlockReceiver::Status::mismatch:
      finish_transfer(false, byte);
      break;
  }
}

/// What came instead of a header may be the start of a frame: it is read again as such.
void SimulatedChip::reject_transfer() {
  const Transfer transfer = *std::exchange(transfer_, std::nullopt);
  say("\r\n" + std::string(image_name(transfer.letter)) + ": no image came\r\n");
  receive(transfer.blocks.header());
}

void SimulatedChip::finish_transfer(bool checksum_ok, std::uint8_t checksum) {
  const Transfer transfer = *std::exchange(transfer_, std::nullopt);
  const BlockReceiver& blocks = transfer.blocks;
  std::string text = "\r\n" + std::string(image_name(transfer.letter)) + ": " +
                     blocks_text(blocks.blocks_received()) + " received, checksum ";
  if (checksum_ok) {
    text += "ok";
  } else {
    text += "wrong (" + hex_byte(checksum) + ", expected " + hex_byte(blocks.expected_checksum()) + ")";
  }
  const bool too_short =
      transfer.letter == CommandLetter::user_data && blocks.data().size() < UserDataImage::kSize;
  const bool usable = checksum_ok && !blocks.data().empty() && !too_short;
  if (usable) keep_image(transfer.letter, blocks.data());
  say(text + (usable ? "\r\n" : ", old image kept\r\n"));
  trace(text.substr(2));
}

void SimulatedChip::keep_image(CommandLetter letter, const std::vector<std::uint8_t>& data) {
  switch (letter) {
    case CommandLetter::firmware:
      state_.firmware = data;
      break;
    case CommandLetter::font:
      state_.font = data;
      break;
    case CommandLetter::user_data:
      for (std::size_t i = 0; i < UserDataImage::kSize; ++i) state_.user_data.set_entry(i, data[i]);
      state_.kept_data = state_.user_data;
      load_setting_registers(state_);
      break;
  }
}

void SimulatedChip::take_letter(CommandLetter letter) {
  trace("command '" + std::string(1, static_cast<char>(letter)) + "': ready for " +
        std::string(image_name(letter)));
  run_.reset();
  transfer_ = Transfer{letter, {}};
}

void SimulatedChip::take_frame(RegisterWrite write) {
  ++state_.frames;
  trace(frame(write));
  run_.note(write);
  // A task that is about to stop leaves its picture as it last made it.
  if (write.address == reg::kAeTask || write.address == reg::kAwbTask) look();
  state_.direct[write.address] = write.value;
  if (is_port(write.address)) {
    if (const auto complete = ports_.write(run_)) access(*complete);
    return;
  }
  apply_setting(state_, run_);
  steer_mark(state_, write);
  take_command(write);
}

void SimulatedChip::take_command(RegisterWrite write) {
  if (const auto found = replies_.find(write.address); found != replies_.end()) {
    reply(found->second(state_));
    return;
  }
  switch (write.address) {
    // Nobody waits for these two blocks, so they are declared abandoned at once: the next query must not
    // find them waiting.
    case kAeInfo:
      say(ae_info_text(state_) + "~" + ae_info_reply(state_) + "^$");
      break;
    case kAwbInfo:
      say(awb_info_text(state_) + "~" + awb_info_reply(state_) + "^$");
      break;
    case kCopyToFactory:
      state_.factory_data = state_.user_data;
      say("\r\nuser data copied to factory data\r\n");
      break;
    default:
      take_flash(write);
  }
}

void SimulatedChip::take_flash(RegisterWrite write) {
  const bool page_full = flash_page_.size() == kFlashPage;
  switch (write.address) {
    case kFlashBegin:
      flash_page_.clear();
      break;
    case kFlashByte:
      if (!page_full) flash_page_.push_back(write.value);
      break;
    case kFlashMask:
      if (page_full) std::copy(flash_page_.begin(), flash_page_.end(), state_.flash_mask.begin());
      break;
    case kFlashBlock:
      if (!page_full || write.value >= ChipState::kFlashWindow / kFlashPage) break;
      std::copy(flash_page_.begin(), flash_page_.end(),
                state_.flash_registers.begin() + static_cast<std::ptrdiff_t>(kFlashPage * write.value));
      break;
    default:
      break;
  }
}

void SimulatedChip::look_before(const PortAccess& access) {
  const std::uint16_t first = access.address & 0xFFF;
  const std::uint16_t last = access.kind == PortAccess::Kind::dump ? access.value & 0xFFF : first + 1;
  const bool reads = access.kind == PortAccess::Kind::isp_read || access.kind == PortAccess::Kind::dump ||
                     access.kind == PortAccess::Kind::isp_wide_read;
  if (reads && measured_between(first, last)) look();
}

void SimulatedChip::access(const PortAccess& access) {
  look_before(access);
  const std::uint16_t address = access.address & 0xFFF;
  switch (access.kind) {
    case PortAccess::Kind::isp_write:
      write_isp(address, low_byte(access.value));
      break;
    case PortAccess::Kind::isp_wide_write:
      write_isp(address, high_byte(access.value));
      write_isp((address + 1) & 0xFFF, low_byte(access.value));
      break;
    case PortAccess::Kind::isp_read:
      trace("  " + isp_name(address) + " is " + hex_byte(state_.isp[address]));
      reply(lower_hex(state_.isp[address]));
      break;
    case PortAccess::Kind::isp_wide_read:
      reply(lower_hex(state_.isp[address]) + lower_hex(state_.isp[(address + 1) & 0xFFF]));
      break;
    case PortAccess::Kind::sensor_write:
      trace("  sensor " + hex_word(access.address) + " <- " + hex_word(access.value));
      state_.sensor[access.address] = access.value;
      break;
    case PortAccess::Kind::sensor_read:
      reply(lower_hex(state_.sensor[access.address], 4));
      break;
    case PortAccess::Kind::dump:
      say(dump_text(state_, access.address, access.value));
      break;
  }
}

void SimulatedChip::write_isp(std::uint16_t address, std::uint8_t value) {
  trace("  " + isp_name(address) + " <- " + hex_byte(value));
  state_.isp[address] = value;
  if (address == kCommandRegister && value == kFactoryResetCommand) reset_to_factory();
}

void SimulatedChip::reset_to_factory() {
  state_.user_data = state_.factory_data;
  state_.kept_data = state_.factory_data;
  load_setting_registers(state_);
  say("\r\nfactory data restored\r\n");
}

void SimulatedChip::say(std::string_view text) {
  if (output_.size() + text.size() > kOutputLimit) return;
  output_.insert(output_.end(), text.begin(), text.end());
}

void SimulatedChip::reply(const std::string& digits) {
  say("~" + digits + "^");
}

void SimulatedChip::trace(const std::string& line) const {
  if (trace_) trace_(line);
}

}  // namespace qv5123
