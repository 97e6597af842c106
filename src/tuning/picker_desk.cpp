#include "tuning/picker_desk.h"

#include <utility>

#include "base/delay.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

constexpr const char* kXPosition = "X Pos";
constexpr const char* kYPosition = "Y Pos";

}  // namespace

PickerDesk::PickerDesk(DeskHost& host, Picker picker)
    : host_(host), picker_(std::move(picker)), keys_wanted_(picker_.on) {}

void PickerDesk::want_keys(bool wanted) {
  keys_wanted_ = wanted;
  show_keys();
}

void PickerDesk::set_measuring(bool measuring) {
  measuring_ = measuring;
  show_keys();
}

void PickerDesk::go() {
  view_->show_picker();
  if (picker_.on) moves_.spawn(send_move("Picker position", picker_position_bytes(picker_.position)));
}

void PickerDesk::show_keys() {
  view_->show_keys();
  if (keys_enabled()) send_typed();
}

void PickerDesk::type_x(int x) {
  picker_.position.x = x;
  x_typed_ = true;
  send_typed();
}

void PickerDesk::type_y(int y) {
  picker_.position.y = y;
  y_typed_ = true;
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

Task<> PickerDesk::arrive() {
  while (typing_.running() || moves_.running()) co_await Delay(host_.scheduler(), CommandLink::kWideWait);
}

void PickerDesk::move(PickerMove move) {
  view_->take_typed();
  picker_.position = moved(picker_.position, move, picker_.step_index);
  view_->show_picker();
  moves_.spawn(moves_across(move) ? send_move(kXPosition, picker_x_bytes(picker_.position.x))
                                  : send_move(kYPosition, picker_y_bytes(picker_.position.y)));
}

Task<> PickerDesk::send_move(const char* what, IspBytes position) {
  const std::string count = std::to_string(position.size());
  const bool left = co_await move_picker(host_.link(), std::move(position));
  if (left)
    host_.show_status(std::string(what) + ": " + count + " registers sent");
  else
    host_.show_failure(std::string(what) + ": not all of it reached the chip");
}

void PickerDesk::click_switch(bool on) {
  view_->take_typed();
  picker_.on = on;
  if (!switching_.running()) switching_.start(run_switch());
  switched();
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
  do {
    on = picker_.on;
    connection_ = host_.link().connection();
    x_typed_ = y_typed_ = false;
    const std::string trouble = co_await picker_.switch_chip(on);
    if (trouble.empty()) {
      host_.show_status(on ? kPickerOnStatus : kPickerOffStatus);
      watching_.start(tell_of_loss());
    } else {
      host_.show_failure(trouble);
      on = picker_.on = !on;
      switched();
    }
  } while (picker_.on != on);
  switching_chip_ = false;
  view_->show_picker();
  show_keys();
  if (picker_.settled) picker_.settled();
}

Task<> PickerDesk::tell_of_loss() {
  const Resolver<bool> changed;
  host_.link().resolve_on_connection_change(changed);
  co_await changed.pending();
  if (picker_.on) host_.show_failure(kPickerPortLost);
}

Traffic PickerDesk::leave() {
  switching_.cancel();
  watching_.cancel();
  switching_chip_ = false;
  const IspBytes off = std::exchange(picker_.off, {});
  if (std::exchange(picker_.on, false)) {
    switched();
    view_->show_picker();
    show_keys();
    if (picker_.settled) picker_.settled();
  }
  return picker_off_traffic(off);
}

}  // namespace qv5123
