#include "tuning/measuring_board.h"

#include <utility>

#include "tuning/video_mode.h"

namespace qv5123 {

void MeasuringBoard::leave(const Member& member) {
  std::erase(members_, &member);
  for (const Member** whose : {&picker_.by, &picker_.at_work, &picker_.switched_by})
    if (*whose == &member) *whose = nullptr;
}

void MeasuringBoard::tell(const Member& from, Picker picker) {
  picker_ = std::move(picker);
  for (Member* member : members_)
    if (member != &from) member->picker_changed();
}

bool MeasuringBoard::move_to(PickerPosition place) {
  if (members_.empty()) return false;
  for (Member* member : members_) {
    if (member != picker_.by) continue;
    member->go_to(place);
    return true;
  }
  members_.front()->go_to(place);
  return true;
}

std::optional<int> MeasuringBoard::video_mode(const UserDataImage& image) const {
  const std::optional<int> known = known_video_mode ? known_video_mode() : std::nullopt;
  if (known || !image.loaded()) return known;
  return image.entry(kVideoModeEntry);
}

}  // namespace qv5123
