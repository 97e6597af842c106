#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "console/image_blocks.h"
#include "link/command_link.h"

namespace qv5123 {

/// What came of a transfer.
enum class TransferEnd {
  sent,       ///< all of the image has left
  not_sent,   ///< no image was chosen, or it cannot be read
  cancelled,  ///< the chip was made to reject it, or left waiting
  lost,       ///< the port is closed or lost, or was meanwhile
  cut_short   ///< the line stood still in the middle of a write
};

/// What a transfer shows while it goes on. All are called on the scheduler's thread; none may be empty.
struct TransferView {
  std::function<void(int)> set_progress;                       ///< the bar's position, 0..100
  std::function<void(const std::string&)> show_progress_text;  ///< amount, speed and time left; may be empty
  std::function<void(const std::string&)> append_console;
  /// What came of a transfer, in the status bar, and whether that is a failure. May be empty.
  std::function<void(bool failed, const std::string&)> tell = {};
  /// After a transfer that left the chip waiting for the rest, nothing else reaches the wire until
  /// end_waiting() or forget_waiting().
  bool keeps_waiting = false;
};

/// One transfer while it lasts. Jobs on the link may outlive it, and then find it gone.
class RunningTransfer : public std::enable_shared_from_this<RunningTransfer> {
 public:
  static constexpr std::size_t kHeader = 1;  ///< chunks before the first block

  RunningTransfer(TransferKind kind, CommandLink& link, const TransferView& view)
      : kind_(kind), link_(link), view_(view) {}
  /// The end of one that was left waiting for `rest`.
  RunningTransfer(TransferKind kind, CommandLink& link, const TransferView& view, const ExpectedRest& rest)
      : kind_(kind), link_(link), view_(view), announced_(true), rest_(rest) {}

  TransferKind kind() const { return kind_; }
  const TransferStyle& style() const { return style_of(kind_); }
  /// "FIRMWARE" and what came of it, on the console.
  void say(const std::string& what) const;
  /// The same in the status bar as well.
  void tell(bool failed, const std::string& what) const;
  const ExpectedRest& rest() const { return rest_; }
  /// Whether the letter left, and what belongs behind it did not.
  bool is_awaited() const { return announced_ && rest_.bytes() > 0; }

  /// The end of a transfer that lost its chip after `chunks_sent` chunks of the image.
  TransferEnd break_off(std::size_t chunks_sent) const;
  /// The end of a transfer of which only a part has left, to a chip that is still there.
  TransferEnd cut_short(std::size_t chunks_sent) const;
  void tell_rejected() const;
  void tell_awaited(const std::string& how) const;

  /// Resolved with whether to go on once the wire is held, or as soon as the transfer is given up.
  const Resolver<bool>& turn() const { return turn_; }
  /// Resolved once there is an image, or nothing to send one for any more.
  const Resolver<bool>& asked() const { return asked_; }

  void cancel();
  bool cancelled() const { return cancels_ > 0; }
  bool cancelled_twice() const { return cancels_ > 1; }

  /// Called before the letter leaves: the chip that gets it is the one that the image is for.
  void remember_connection() { connection_ = link_.connection(); }
  /// Whether the port was away since. The chip then takes what follows for commands, or is another one.
  bool reconnected() const { return link_.connection() != connection_; }

  /// The letter has left.
  void announce() { announced_ = true; }
  /// Speed and time left count from here.
  void begin(std::size_t block_count);
  /// All has left.
  void finish(const BlockImage& image) const;

  /// Sends `other_chunks` chunks and then blocks, before which `blocks_before` have left already.
  Task<JobResult> send(CommandLink::Hold& hold, std::vector<Chunk> chunks, std::size_t other_chunks,
                       std::size_t blocks_before);

 private:
  void say_broken_off(std::size_t chunks_sent, const std::string& why) const;
  void show(std::size_t blocks_sent) const;
  void note_sent(const std::vector<Chunk>& chunks, std::size_t bytes_sent);

  TransferKind kind_;
  CommandLink& link_;
  const TransferView view_;
  bool announced_ = false;
  ExpectedRest rest_;
  Resolver<bool> turn_;
  Resolver<bool> asked_;
  unsigned connection_ = 0;
  std::size_t block_count_ = 0;
  std::chrono::milliseconds started_{0};
  int cancels_ = 0;
  bool sending_ = false;
};

}  // namespace qv5123
