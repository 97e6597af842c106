#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "console/user_data_image.h"
#include "tuning/chart_run.h"
#include "tuning/picker.h"

namespace qv5123 {

/// What the pages that measure share: the chip has one color picker, and in front of the camera there is one
/// chart. What a page does to the picker is told to the others, which show it as their own.
class MeasuringBoard {
 public:
  /// A page's picker. It must be told apart from others by its address.
  class Member {
   public:
    virtual ~Member() = default;
    /// Another page has changed what picker() tells.
    virtual void picker_changed() = 0;
    /// Brings the cursor there, as if its place had been typed.
    virtual void go_to(PickerPosition place) = 0;
  };
  struct Picker {
    bool on = false;
    IspBytes off;  ///< what the chip gets when it is left; empty while it is off
    PickerPosition position;
    /// In whose way the chip measures: the page that has switched the picker on.
    const Member* by = nullptr;
    unsigned connection = 0;  ///< on which the chip was switched
    /// Who moves the cursor by itself: the others' keys rest meanwhile.
    const Member* at_work = nullptr;
    /// Who switches the chip, or will do so by itself: nobody else is to meanwhile.
    const Member* switched_by = nullptr;
  };

  void join(Member& member) { members_.push_back(&member); }
  void leave(const Member& member);

  const Picker& picker() const { return picker_; }
  /// `from` has changed it to this; the others are told.
  void tell(const Member& from, Picker picker);
  /// Brings the cursor there through the page that has switched the picker on, or any. False where no page is
  /// open that measures.
  bool move_to(PickerPosition place);

  /// Where the chart's corner patches are, by video mode.
  std::array<ChartCorners, kVideoModes>& corners() { return corners_; }
  /// Those of the mode for which a corner was set last.
  const ChartCorners& latest_corners() const { return corners_[static_cast<std::size_t>(latest_mode_)]; }
  void corner_set(int mode) { latest_mode_ = mode; }

  /// What the linear matrix page has measured of the chart, while there is that page.
  const MeasuredColours* chart = nullptr;

  /// What the chip is known to have as "Video Mode" of the ISP tune page. May be empty.
  std::function<std::optional<int>()> known_video_mode;
  /// That, else what the user data says; nothing where no file was loaded.
  std::optional<int> video_mode(const UserDataImage& image) const;

 private:
  std::vector<Member*> members_;
  Picker picker_;
  std::array<ChartCorners, kVideoModes> corners_;
  int latest_mode_ = kTvi;
};

}  // namespace qv5123
