#include "tuning/picker_desk.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

constexpr const char* kPosition = "Picker position";
constexpr const char* kXPosition = "X Pos";
constexpr const char* kYPosition = "Y Pos";

/// `off` behind what of `others` it does not say itself.
IspBytes with_others(IspBytes others, const IspBytes& off) {
  std::erase_if(others, [&off](const IspByte& other) {
    return std::ranges::find(off, other.address, &IspByte::address) != off.end();
  });
  others.insert(others.end(), off.begin(), off.end());
  return others;
}

}  // namespace

PickerDesk::PickerDesk(DeskHost& host, Picker picker, std::shared_ptr<MeasuringBoard> board)
    : host_(host), picker_(std::move(picker)), board_(std::move(board)), keys_wanted_(board_->picker().on) {
  picker_.on = board_->picker().on;
  picker_.off = board_->picker().off;
  picker_.position = board_->picker().position;
  board_->join(*this);
}

void PickerDesk::tell_others() {
  const auto mark = [this](const Member*& who, bool it_is_this) {
    if (it_is_this)
      who = this;
    else if (who == this)
      who = nullptr;
  };
  MeasuringBoard::Picker now = board_->picker();
  now.position = picker_.position;
  mark(now.at_work, measuring_ || sweeping_);
  mark(now.switched_by, switching_chip_ || taking_over_ || !switch_allowed_);
  // Who switches knows better how the chip is.
  if (!is_another(now.switched_by)) {
    now.on = picker_.on;
    now.off = picker_.off;
  }
  if (!now.on && now.off.empty()) now.by = nullptr;
  board_->tell(*this, std::move(now));
}

void PickerDesk::picker_changed() {
  const MeasuringBoard::Picker& now = board_->picker();
  picker_.position = now.position;
  // Of what this page does itself the others hear when it is done.
  if (now.switched_by == this) return view_->show_picker();
  picker_.off = now.off;
  if (std::exchange(picker_.on, now.on) != now.on) {
    x_typed_ = y_typed_ = false;
    switched();
  }
  view_->show_picker();
  show_keys();
}

void PickerDesk::allow_switch(bool allowed) {
  switch_allowed_ = allowed;
  tell_others();
}

void PickerDesk::set_sweeping(bool sweeping) {
  sweeping_ = sweeping;
  tell_others();
}

void PickerDesk::want_keys(bool wanted) {
  keys_wanted_ = wanted;
  show_keys();
}

void PickerDesk::set_measuring(bool measuring) {
  measuring_ = measuring;
  show_keys();
  tell_others();
}

void PickerDesk::go_to(PickerPosition place) {
  if (measuring_ || sweeping_ || at_work_elsewhere())
    return host_.show_status_of(kAboutPicker, "The cursor stays: it is being moved by a measurement.");
  picker_.position = clamped(place);
  x_typed_ = y_typed_ = false;
  go();
  if (picker_.on && picker_.pointed) picker_.pointed();
}

void PickerDesk::go() {
  view_->show_picker();
  tell_others();
  if (picker_.on) moves_.spawn(send_move(kPosition, picker_position_bytes(picker_.position)));
}

void PickerDesk::show_keys() {
  view_->show_keys();
  if (keys_enabled()) send_typed();
}

void PickerDesk::type_x(int x) {
  picker_.position.x = x;
  x_typed_ = true;
  tell_others();
  send_typed();
}

void PickerDesk::type_y(int y) {
  picker_.position.y = y;
  y_typed_ = true;
  tell_others();
  send_typed();
}

/// Brings the cursor to what was typed, unless something else moves it at present: then it waits, and where
/// the picker is switched off it needs no sending, for switching on does that.
void PickerDesk::send_typed() {
  if (!typing_.running()) typing_.start(run_send_typed());
}

/// One position at a time: who spins fast gets to the last one without those before.
Task<> PickerDesk::run_send_typed() {
  while (picker_.on && keys_enabled() && (x_typed_ || y_typed_)) {
    if (std::exchange(y_typed_, false)) {
      co_await send_move(kYPosition, picker_y_bytes(picker_.position.y));
    } else {
      x_typed_ = false;
      co_await send_move(kXPosition, picker_x_bytes(picker_.position.x));
    }
  }
}

/// Whether something will still move the cursor or switch the chip.
bool PickerDesk::on_its_way() const {
  return typing_.running() || moves_.running() || at_work_elsewhere() || board_->picker().switched_by;
}

Task<bool> PickerDesk::arrive() {
  const bool was_on = picker_.on;
  while (on_its_way()) co_await Delay(host_.scheduler(), CommandLink::kWideWait);
  if (was_on && !picker_.on) co_return false;
  if (!picker_.on || chip_was_away()) co_return true;
  if (board_->picker().by != this) {
    const bool taken = co_await take_over();
    if (!taken) co_return false;
  }
  if (place_lost_) co_await send_move(kPosition, picker_position_bytes(picker_.position));
  co_return !place_lost_;
}

Task<bool> PickerDesk::arrive_for_color() {
  const bool arrived = co_await arrive();
  if (chip_was_away()) host_.show_failure("GET COLOR: " + std::string(kPickerChipWasAway));
  co_return arrived && !chip_was_away();
}

Task<bool> PickerDesk::take_over() {
  taking_over_ = true;
  tell_others();
  const std::string trouble = co_await switch_own_way(true);
  if (!trouble.empty()) host_.show_failure_of(kAboutPicker, trouble);
  // What was typed meanwhile is on its way by itself.
  while (typing_.running() || moves_.running()) co_await Delay(host_.scheduler(), CommandLink::kWideWait);
  taking_over_ = false;
  tell_others();
  co_return trouble.empty() && picker_.on;
}

void PickerDesk::tell_on_in_no_way() {
  MeasuringBoard::Picker now = board_->picker();
  now.by = nullptr;
  now.connection = host_.link().connection();
  watching_.start(watch_port());
  board_->tell(*this, std::move(now));
  tell_others();
}

/// Beside the page's own way, what another page's way has changed and this one leaves alone is as it was.
Task<std::string> PickerDesk::switch_own_way(bool on) {
  const MeasuringBoard::Picker before = board_->picker();
  const unsigned connection = host_.link().connection();
  IspBytes others;
  if (is_another(before.by) || (before.on && !before.by)) others = restored_beside_picker(before.off);
  IspBytes restoring = others;
  const bool restored = co_await write_isp_bytes(host_.link(), std::move(restoring));
  std::string trouble = co_await picker_.switch_chip(on);
  if (trouble.empty() && !restored) trouble = "Color picker: not all of it reached the chip";
  MeasuringBoard::Picker after = board_->picker();
  if (trouble.empty()) {
    after.by = on ? this : nullptr;
    after.connection = connection;
    if (on) watching_.start(watch_port());
    // Switching on brings the cursor along.
    place_lost_ = false;
  } else if (!picker_.off.empty()) {
    picker_.off = with_others(std::move(others), picker_.off);
  }
  board_->tell(*this, std::move(after));
  co_return trouble;
}

void PickerDesk::move(PickerMove move) {
  view_->take_typed();
  picker_.position = moved(picker_.position, move, picker_.step_index);
  view_->show_picker();
  tell_others();
  moves_.spawn(moves_across(move) ? send_move(kXPosition, picker_x_bytes(picker_.position.x))
                                  : send_move(kYPosition, picker_y_bytes(picker_.position.y)));
}

Task<> PickerDesk::send_move(const char* what, IspBytes position) {
  const std::string count = std::to_string(position.size());
  const bool whole = position.size() > picker_x_bytes(0).size();
  const bool left = co_await move_picker(host_.link(), std::move(position));
  if (!left || whole) place_lost_ = !left;
  if (left)
    host_.show_status_of(kAboutPicker, std::string(what) + ": " + count + " registers sent");
  else
    host_.show_failure_of(kAboutPicker, std::string(what) + ": not all of it reached the chip");
}

void PickerDesk::click_switch(bool on) {
  view_->take_typed();
  if (!switch_enabled()) return view_->show_picker();
  picker_.on = on;
  if (!switching_.running()) switching_.start(run_switch());
  switched();
  tell_others();
}

void PickerDesk::switched() {
  if (picker_.switched) picker_.switched();
  view_->switched();
}

Task<> PickerDesk::run_switch() {
  const BusyScope busy(host_);
  bool on = false;
  switching_chip_ = true;
  show_keys();
  while (taking_over_) co_await Delay(host_.scheduler(), CommandLink::kWideWait);
  do {
    on = picker_.on;
    x_typed_ = y_typed_ = false;
    const std::string trouble = co_await switch_own_way(on);
    if (trouble.empty()) {
      host_.show_status_of(kAboutPicker, on ? kPickerOnStatus : kPickerOffStatus);
    } else {
      host_.show_failure_of(kAboutPicker, trouble);
      on = picker_.on = !on;
      switched();
    }
  } while (picker_.on != on);
  switching_chip_ = false;
  view_->show_picker();
  show_keys();
  tell_others();
  if (picker_.settled) picker_.settled();
}

Task<> PickerDesk::connection_change() {
  const Resolver<bool> changed;
  host_.link().resolve_on_connection_change(changed);
  co_await changed.pending();
}

/// Whether it is this page's to say so and to end it.
bool PickerDesk::may_still_measure() const {
  return picker_.on && !is_another(board_->picker().by);
}

/// A chip that may have measured through the loss of its port is told to stop as soon as it hears again.
Task<> PickerDesk::watch_port() {
  co_await connection_change();
  if (may_still_measure()) host_.show_failure_of(kAboutPicker, kPickerPortLost);
  for (bool left = false; !left;) {
    co_await connection_change();
    if (!may_still_measure()) co_return;
    // A click on the switch ends it as well, or fails and leaves it to the next time.
    if (switching_.running()) continue;
    const JobResult sent = co_await host_.link().send(picker_off_traffic(picker_.off));
    left = !sent.failed;
  }
  if (!may_still_measure()) co_return;
  picker_.off.clear();
  show_off();
  tell_others();
  host_.show_status_of(kAboutPicker, kPickerOffAfterLoss);
}

void PickerDesk::show_off() {
  picker_.on = false;
  switched();
  view_->show_picker();
  show_keys();
  if (picker_.settled) picker_.settled();
}

Traffic PickerDesk::leave() {
  switching_.cancel();
  watching_.cancel();
  switching_chip_ = taking_over_ = false;
  const IspBytes off = std::exchange(picker_.off, {});
  if (picker_.on) show_off();
  tell_others();
  return picker_off_traffic(off);
}

}  // namespace qv5123
