#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/task.h"
#include "console/page_host.h"
#include "tuning/measuring_board.h"
#include "tuning/picker.h"

namespace qv5123 {

/// The colour picker of a page: brings the chip to where the page's values say that it is, and knows when it
/// has arrived. The chip has one picker: what the other pages do to it the page's values say as well.
class PickerDesk final : private MeasuringBoard::Member {
 public:
  /// Its controls; as it stands here there are none.
  class View {
   public:
    virtual ~View() = default;
    virtual void take_typed() {}
    /// Switch, position and step.
    virtual void show_picker() {}
    /// The arrows and what stands between them.
    virtual void show_keys() {}
    /// The flag has changed: the user has clicked the switch, or the chip did not follow.
    virtual void switched() {}
  };
  /// The page's own values, which must outlive the desk, and how its picker is switched.
  struct Picker {
    bool& on;
    IspBytes& off;  ///< what the chip gets when it is left
    PickerPosition& position;
    int& step_index;
    /// Tells what went wrong, in words; empty when the chip followed.
    std::function<Task<std::string>(bool on)> switch_chip;
    /// For the page's desk, which may have none: the flag has changed; the chip has followed, or did not.
    std::function<void()> switched = {};
    std::function<void()> settled = {};
    /// The same where the picker is on and somebody has pointed at a place of the picture: the cursor goes
    /// there.
    std::function<void()> pointed = {};
  };

  PickerDesk(DeskHost& host, Picker picker, std::shared_ptr<MeasuringBoard> board);
  PickerDesk(const PickerDesk&) = delete;
  PickerDesk& operator=(const PickerDesk&) = delete;
  ~PickerDesk() override { board_->leave(*this); }
  /// The view must outlive the desk's work.
  void attach(View& view) { view_ = &view; }

  bool on() const { return picker_.on; }
  /// Whether the chip is being switched.
  bool switching() const { return switching_.running(); }
  const PickerPosition& position() const { return picker_.position; }
  int step_index() const { return picker_.step_index; }
  void choose_step(int index) { picker_.step_index = index; }

  /// A click on the switch. One switch at a time, for the chip would end up in between: who changes his mind
  /// meanwhile waits. A chip that did not follow is as it was, and so are the values then.
  void click_switch(bool on);
  /// The chip is left, and its picker is to be off: the page's is from now on.
  /// What the chip must still get; empty where its picker is off.
  Traffic leave();
  /// A press of an arrow.
  void move(PickerMove move);
  /// A number typed; only the last one is sent where they come faster than the chip takes them.
  void type_x(int x);
  void type_y(int y);

  /// Whether the keys may be used: the page wants them, and the chip is not being switched.
  bool keys_enabled() const {
    return keys_wanted_ && !switching_chip_ && !measuring_ && !at_work_elsewhere() && switch_enabled();
  }
  void want_keys(bool wanted);
  /// Whether another page moves the cursor by itself.
  bool at_work_elsewhere() const { return is_another(board_->picker().at_work); }
  /// Whether the switch may be used: no other page does so at present, or will by itself.
  bool switch_enabled() const { return !is_another(board_->picker().switched_by); }

  /// While it is set the arrows rest, and the key between them takes further presses and shows that it is
  /// busy.
  void set_measuring(bool measuring);
  bool measuring() const { return measuring_; }
  /// While it is set the page moves the cursor by itself, and the other pages' keys rest.
  void set_sweeping(bool sweeping);
  /// While it is not allowed the page switches the picker off by itself, and no other page may switch it.
  void allow_switch(bool allowed);
  /// Brings the chip to it by itself. What another page's way of measuring has changed beside the picker is
  /// restored. What went wrong, in words; empty when the chip followed.
  Task<std::string> switch_own_way(bool on);
  /// The page's values of its picker have changed by themselves: the other pages are told.
  void tell_others();
  /// Brings the cursor to where the page's values say that it is by now.
  void go();

  /// Waits until the cursor is where the page says, what is measured before that belongs elsewhere, until no
  /// other page is at work, and until nobody switches the chip. A picker that was switched on in another way
  /// is then switched on in this page's. False, and the user was told, where the chip did not follow or the
  /// picker was switched off meanwhile: what is measured now belongs elsewhere.
  Task<bool> arrive();
  /// The same for "GET COLOR", which measures nothing on a chip that was away, and says so.
  Task<bool> arrive_for_color();
  /// The chip's cursor may be elsewhere: the next arrive() brings it anew.
  void forget_place() { place_lost_ = true; }
  /// The page has switched the chip's picker on in a way that is no page's: who measures next brings it to
  /// his own.
  void tell_on_in_no_way();
  /// Whether the port was lost or closed since the picker was switched on. The chip may have been without
  /// power and measure nothing: its registers then hold what they always hold.
  bool chip_was_away() const {
    return picker_.on && host_.link().connection() != board_->picker().connection;
  }

 private:
  void picker_changed() override;
  void go_to(PickerPosition place) override;
  bool is_another(const Member* member) const { return member && member != this; }
  bool on_its_way() const;
  Task<bool> take_over();
  Task<> send_move(const char* what, IspBytes position);
  Task<> run_switch();
  Task<> connection_change();
  Task<> watch_port();
  bool may_still_measure() const;
  void show_off();
  void show_keys();
  void switched();
  void send_typed();
  Task<> run_send_typed();

  DeskHost& host_;
  Picker picker_;
  std::shared_ptr<MeasuringBoard> board_;
  View nobody_;
  View* view_ = &nobody_;
  bool keys_wanted_;
  bool switching_chip_ = false;
  bool measuring_ = false;
  bool sweeping_ = false;
  bool switch_allowed_ = true;
  bool taking_over_ = false;
  bool place_lost_ = false;  // the last move did not leave
  bool x_typed_ = false;     // and not sent yet
  bool y_typed_ = false;
  Flow switching_;
  Flow watching_;
  Flow typing_;
  FlowSet moves_;
};

}  // namespace qv5123
