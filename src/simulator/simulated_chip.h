#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/block_receiver.h"
#include "simulator/camera.h"
#include "simulator/chip_state.h"
#include "simulator/frame_parser.h"
#include "simulator/indirect_ports.h"
#include "simulator/page_replies.h"
#include "simulator/write_run.h"

namespace qv5123 {

/// The camera chip on the other end of the line: bytes go in with receive(), bytes come out with
/// take_output(), in the order in which the chip says them. It has no clock and no threads; whoever runs it
/// says how long the line was silent. No input can harm it. The ISP's 0x922 is written, which it understands
/// in silence, and read:
///
///     @9209*@9222*@9312*
///     @9409*@9422*          ~12^
class SimulatedChip {
 public:
  /// Called with one line of text for everything the chip understands.
  using Trace = std::function<void(const std::string&)>;

  /// Silence after which half an indirect address is forgotten: its bytes always leave together.
  static constexpr std::chrono::milliseconds kAddressPatience{30};
  /// Silence after which a block transfer that has begun is given up.
  static constexpr std::chrono::milliseconds kTransferPatience{2000};

  /// A chip with factory settings that has no power yet.
  SimulatedChip();

  /// Starts, or starts anew: everything but the kept settings, the images and the flash returns to its
  /// values at power on. Announces itself.
  void power_on();
  /// Prints the boot banner and sends the version reply.
  void announce();

  void receive(std::span<const std::uint8_t> bytes);
  /// Tells that the line has been silent for `silence` since the last byte.
  void line_quiet(std::chrono::milliseconds silence);
  /// What the chip has sent since the last call.
  std::vector<std::uint8_t> take_output();

  void set_trace(Trace trace) { trace_ = std::move(trace); }
  /// Answers writes to `trigger` with what `builder` makes of the chip's state.
  void set_reply(std::uint8_t trigger, ReplyBuilder builder) { replies_[trigger] = std::move(builder); }

  /// Puts a camera in front of the chip: from now on the chip says what it measures in its picture. Without
  /// one the registers for that are as any others.
  void set_camera(const Camera& camera);
  const std::optional<Camera>& camera() const { return camera_; }
  /// Lets the chip look at its picture, as it does before each answer about it.
  void look();

  const ChipState& state() const { return state_; }
  std::uint8_t direct(std::uint8_t address) const { return state_.direct[address]; }
  std::uint8_t isp(std::uint16_t address) const { return state_.isp[address & 0xFFF]; }
  std::uint16_t sensor(std::uint16_t address) const { return state_.sensor[address]; }
  /// True from a command letter to the end of the transfer.
  bool transfer_open() const { return transfer_.has_value(); }

 private:
  struct Transfer {
    CommandLetter letter;
    BlockReceiver blocks;
  };

  void take_byte(std::uint8_t byte);
  void take_transfer_byte(std::uint8_t byte);
  void reject_transfer();
  void finish_transfer(bool checksum_ok, std::uint8_t checksum);
  void keep_image(CommandLetter letter, const std::vector<std::uint8_t>& data);

  void take_letter(CommandLetter letter);
  void take_frame(RegisterWrite write);
  void take_command(RegisterWrite write);
  void take_flash(RegisterWrite write);
  void access(const PortAccess& access);
  void look_before(const PortAccess& access);
  void write_isp(std::uint16_t address, std::uint8_t value);
  void reset_to_factory();

  void say(std::string_view text);
  void reply(const std::string& digits);
  void trace(const std::string& line) const;

  ChipState state_;
  FrameParser parser_;
  WriteRun run_;
  IndirectPorts ports_;
  ReplyTable replies_ = page_replies();
  std::optional<Transfer> transfer_;
  std::optional<Camera> camera_;
  std::vector<std::uint8_t> flash_page_;  ///< bytes on their way into the register flash
  std::vector<std::uint8_t> output_;
  Trace trace_;
};

}  // namespace qv5123
