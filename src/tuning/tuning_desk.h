#pragma once

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/task.h"
#include "console/page_host.h"
#include "console/prompts.h"
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

  /// What of the page came neither from the chip nor from a file: "not read yet"; empty when all of it did.
  virtual std::string unread() const;
  /// `told` hears of unread() at once, and whenever it may have changed.
  void tell_unread(std::function<void(const std::string&)> told);

  /// "File/Flash Save"; ignored while one is under way. Asks first, once, where it would send what nobody has
  /// read.
  void start_save(Prompts& prompts, Task<> save) {
    if (!save_.running()) save_.start(run_save(prompts, std::move(save)));
  }
  bool saving() const { return save_.running(); }
  /// Sends a full save as one job with progress, waits while the chip stores, and does what comes after it.
  /// False, and said in the status bar, when not all of it left or the chip was away.
  Task<bool> send_save(FullSave save, std::string done);

  /// Sends the traffic of a control beside whatever else is under way, and says so once it has left: "Red
  /// row: 3 registers sent".
  void send_control(const std::string& what, Traffic traffic) {
    host_.send_and_tell(what, std::move(traffic));
  }

  /// Lets `task` run to its end, or the desk's.
  void spawn(Task<> task) { flows_.spawn(std::move(task)); }

 protected:
  DeskHost& host() { return host_; }
  CommandLink& link() { return host_.link(); }
  UserDataImage& image() { return image_; }
  const UserDataImage& image() const { return image_; }
  DeskView& view() { return *view_; }
  /// Takes the values that the page opens with from the program's own image.
  void open_with_image();
  /// The values have come from file or chip, and are about to be shown.
  virtual void values_loaded() {}
  /// unread() may have changed.
  void show_unread() const {
    if (unread_told_) unread_told_(unread());
  }
  /// What "File/Flash Save" would send that nobody has read, as the question tells it; empty where there is
  /// no such thing.
  virtual std::string unread_saved() const;
  /// Asks before what `text` tells is done, unless it is empty or the user has agreed to it before.
  Task<bool> agreed(Prompts& prompts, std::string text);

 private:
  /// The values have come from the chip, and are shown next.
  virtual void taken_reply() {}
  Task<> run_load() { co_await load_from_chip(); }
  Task<> run_save(Prompts& prompts, Task<> save);
  void mark_filled(bool filled);

  DeskHost& host_;
  UserDataImage& image_;
  DeskView nobody_;
  DeskView* view_ = &nobody_;
  TuningModel& model_;
  bool filled_ = false;  // by the chip or a file
  std::function<void(const std::string&)> unread_told_;
  std::set<std::string> agreed_texts_;
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
