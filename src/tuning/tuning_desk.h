#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "base/task.h"
#include "console/page_host.h"
#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/page_model.h"

namespace qv5123 {

/// The window's side of a desk; as it stands here it is that of the command line, which shows nothing.
class DeskView {
 public:
  virtual ~DeskView() = default;
  /// Puts what is still being typed into the desk's values.
  virtual void take_typed() {}
  /// The desk's values have changed by themselves: a load, a fit, a correction.
  virtual void show_values() {}
};

/// A full save as it leaves for the chip.
struct FullSave {
  Traffic traffic;
  std::chrono::milliseconds settling{0};  ///< how long the chip stores afterwards and gets nothing else
  std::vector<std::string> corrections;   ///< what was changed in the values before it was sent
};

/// A tuning page without its window: its values, and its work with chip and file.
class TuningDesk {
 public:
  TuningDesk(DeskHost& host, UserDataImage& image, TuningModel& model)
      : host_(host), image_(image), model_(model) {}
  TuningDesk(const TuningDesk&) = delete;
  TuningDesk& operator=(const TuningDesk&) = delete;
  virtual ~TuningDesk() = default;
  /// The view must outlive the desk.
  void attach(DeskView& view) { view_ = &view; }

  TuningModel& model() { return model_; }
  const TuningModel& model() const { return model_; }

  /// The full save of what the page holds, which it may correct first.
  virtual FullSave full_save() = 0;
  /// What the page does on the chip after its full save.
  virtual Task<> after_save() { co_return; }
  /// What using a control sends now; `control` is a field's `sent_by`.
  virtual Traffic control_traffic(int control) const = 0;

  /// Takes the values from the program's own image and shows them.
  void reload();
  /// "Load <- File": the same, and says so.
  void load_file();
  /// "Load <- ISP"; one that is still under way starts anew.
  void start_load() { load_.start(run_load()); }
  bool loading() const { return load_.running(); }
  /// Asks the chip and takes its reply. True when it was taken.
  Task<bool> load_from_chip();

  /// "File/Flash Save"; ignored while one is under way.
  void start_save(Task<> save) {
    if (!save_.running()) save_.start(std::move(save));
  }
  bool saving() const { return save_.running(); }
  /// Sends a full save as one job with progress, waits while the chip stores, and does what comes after it.
  /// False, and said in the status bar, when not all of it left or the chip was away.
  Task<bool> send_save(FullSave save, std::string done);

  /// Sends the traffic of a control beside whatever else is under way, and says so once it has left: "Red
  /// row: 8 registers sent".
  void send_control(std::string what, Traffic traffic) {
    spawn(run_send(std::move(what), std::move(traffic)));
  }

  /// Lets `task` run to its end, or the desk's.
  void spawn(Task<> task) { flows_.spawn(std::move(task)); }

 protected:
  DeskHost& host() { return host_; }
  CommandLink& link() { return host_.link(); }
  UserDataImage& image() { return image_; }
  const UserDataImage& image() const { return image_; }
  DeskView& view() { return *view_; }
  /// The values have come from file or chip, and are about to be shown.
  virtual void values_loaded() {}

 private:
  /// The values have come from the chip, and are shown next.
  virtual void taken_reply() {}
  Task<> run_load() { co_await load_from_chip(); }
  Task<> run_send(std::string what, Traffic traffic);

  DeskHost& host_;
  UserDataImage& image_;
  DeskView nobody_;
  DeskView* view_ = &nobody_;
  TuningModel& model_;
  Flow load_;
  Flow save_;
  FlowSet flows_;
};

/// A desk whose values are laid out by `Page`.
template <class Page>
class PageDesk : public TuningDesk {
 public:
  PageDesk(DeskHost& host, UserDataImage& image) : TuningDesk(host, image, model_) {}

  const typename Page::Values& values() const { return model_.values; }
  /// The place in the model's fields of a member of values().
  template <class T>
  std::size_t field(const T& value) const {
    return model_.field(value);
  }
  template <class T>
  const FieldInfo& info(const T& value) const {
    return model_.fields()[field(value)];
  }

 private:
  PageModel<Page> model_;

 protected:
  typename Page::Values& values_ = model_.values;
};

}  // namespace qv5123
