#pragma once

#include <functional>
#include <vector>

#include "app/ui/pages.h"
#include "base/task.h"

namespace qv5123 {

class CQV5123View;
class GammaDesk;
class MatrixDesk;
class PickerDesk;

/// Has something measured or chosen on the pages before the tour takes their pictures, on the simulated
/// camera.
class TourPages {
 public:
  /// Lets the camera look at the scene of that name.
  using AimCamera = std::function<void(const char* scene)>;

  TourPages(CQV5123View& view, AimCamera aim) : view_(view), aim_(std::move(aim)) {}

  /// Fills the page, which is open and shown. Those that have nothing to measure or choose stay as they are.
  Task<> fill(PageId id);

 private:
  Task<> fill_registers();
  void part_curves();
  void join_curves();
  Task<> fill_lens();
  Task<> fill_white_lines();
  Task<> measure_chart();
  Task<> measure(MatrixDesk& matrix);
  void fill_font();
  Task<> fill_flash();
  Task<> switch_picker(PickerDesk& picker, bool on);
  Task<> while_true(std::function<bool()> busy);
  template <class Desk>
  Desk* desk(const char* page);

  CQV5123View& view_;
  const AimCamera aim_;
  std::vector<int> curves_;  ///< all of the gamma page's values, before they were changed for its picture
};

}  // namespace qv5123
