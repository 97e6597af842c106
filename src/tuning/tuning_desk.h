#pragma once

#include <any>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/task.h"
#include "console/page_host.h"
#include "console/prompts.h"
#include "console/user_data_image.h"
#include "link/register_write.h"
#include "link/write_note.h"
#include "tuning/desk_watcher.h"
#include "tuning/page_model.h"
#include "tuning/value_mark.h"
#include "tuning/verification.h"

namespace qv5123 {

struct LongTraffic;

/// What the note of a full save calls its control.
inline constexpr const char* kFullSave = "File/Flash Save";
/// What unread() says of a page that was filled before the chip was reset.
inline constexpr const char* kOlderThanChip = "older than the chip";

/// The window's side of a desk; as it stands here it is that of the command line, which shows nothing.
class DeskView {
 public:
  virtual ~DeskView() = default;
  /// Puts what is still being typed into the desk's values.
  virtual void take_typed() {}
  /// The desk's values have changed by themselves: a load, a fit, a correction.
  virtual void show_values() {}
  /// How each value differs from chip and file, by its place in the desk's list.
  virtual void show_marks(const std::vector<ValueMark>&) {}
};

/// A full save as it leaves for the chip.
struct FullSave {
  Traffic traffic;
  std::chrono::milliseconds settling{0};  ///< how long the chip stores afterwards and gets nothing else
  std::vector<std::string> corrections;   ///< what was changed in the values before it was sent
  std::vector<WriteNote::Value> values;   ///< what the chip holds afterwards
};

/// A tuning page without its window: its values, and its work with chip and file.
class TuningDesk {
 public:
  TuningDesk(DeskHost& host, UserDataImage& image, TuningModel& model)
      : host_(host), image_(image), model_(model) {}
  TuningDesk(const TuningDesk&) = delete;
  TuningDesk& operator=(const TuningDesk&) = delete;
  virtual ~TuningDesk();
  /// The view must outlive the desk.
  void attach(DeskView& view) { view_ = &view; }
  /// From now on `watcher`, which must outlive the desk, is told of everything.
  void watch(DeskWatcher& watcher);
  void show_marks(const std::vector<ValueMark>& marks) { view_->show_marks(marks); }

  TuningModel& model() { return model_; }
  const TuningModel& model() const { return model_; }

  /// The full save of what the page holds, which it may correct first.
  FullSave full_save();
  /// What the page does on the chip after its full save.
  virtual Task<> after_save() { co_return; }
  /// What using a control sends now; `control` is a field's `sent_by`.
  virtual Traffic control_traffic(int control) const = 0;
  /// The values that it brings to the chip thereby, as the chip then reports them.
  virtual std::vector<WriteNote::Value> control_values(int control) const;

  /// As if `number` had been typed for a value.
  void type(std::size_t field, int number);
  /// Puts former values back, and shows them.
  void restore(const std::any& kept);
  /// Takes single values from elsewhere, and shows them. `what` names the step.
  void take_values(std::string what, const std::vector<WriteNote::Value>& values);
  /// What brings single values to the chip through their own controls, which may send others with them.
  virtual Traffic own_traffic(const std::vector<std::size_t>& fields) const;
  /// All that this brings to the chip.
  virtual std::vector<WriteNote::Value> own_values(const std::vector<std::size_t>& fields) const;
  /// Sends it, or with `keep` the same in the brackets of a full save, and says so.
  void send_values(std::string what, const std::vector<std::size_t>& fields, bool keep) {
    spawn(bring_values(std::move(what), fields, keep));
  }
  /// The same for who waits until the chip has kept it.
  Task<> bring_values(std::string what, std::vector<std::size_t> fields, bool keep);
  /// Sends it as it stands in the brackets of a full save. False where not all of it left.
  Task<bool> send_kept(std::string what, std::vector<std::size_t> fields);

  /// Takes the values from the program's own image and shows them.
  void reload();
  /// "Load <- File": the same, and says so.
  void load_file();
  /// "Load <- ISP"; one that is still under way starts anew.
  void start_load() { load_.start(run_load()); }
  bool loading() const { return load_.running(); }
  /// Asks the chip and takes its reply. True when it was taken.
  Task<bool> load_from_chip();

  /// What of the page came neither from the chip nor from a file: "not read yet", or kOlderThanChip; empty
  /// when all of it did and nothing is newer.
  virtual std::string unread() const;
  /// `told` hears of unread() at once, and whenever it may have changed.
  void tell_unread(std::function<void(const std::string&)> told);
  /// The chip has other values since, such as its factory settings. A load or a full save ends that.
  void chip_was_reset();

  /// "File/Flash Save"; ignored while one is under way. Asks first, once, where it would send what nobody has
  /// read. The page is read back afterwards where the watcher wants that.
  void start_save(Prompts& prompts, Task<> save);
  bool saving() const { return save_.running(); }
  /// Sends a full save as one job with progress, waits while the chip stores, and does what comes after it.
  /// False, and said in the status bar, when not all of it left or the chip was away.
  Task<bool> send_save(FullSave save, std::string done);
  /// Reads back what the last full save sent.
  Task<Verification> verify_save(std::chrono::milliseconds patience = kVerifyPatience);
  /// Sends what differs or was not proven again, for the chip to keep, and reads the page back, until all is
  /// as it was sent, and at most so many times.
  Task<Verification> repair_save(Verification found, int times,
                                 std::chrono::milliseconds patience = kVerifyPatience);
  /// "Send these again"; ignored while a save is under way.
  void start_repair(Verification found);

  /// Sends what a control sends beside whatever else is under way, and says so once it has left: "Red row: 3
  /// registers sent".
  void send_control(const std::string& what, int control);

  /// Lets `task` run to its end, or the desk's.
  void spawn(Task<> task) { flows_.spawn(std::move(task)); }

 protected:
  /// While it stands values may change; then the watcher is told, if any did.
  class Changing {
   public:
    Changing(TuningDesk& desk, DeskChange::Kind kind, std::string what, unsigned drag = 0);
    Changing(const Changing&) = delete;
    Changing& operator=(const Changing&) = delete;
    ~Changing();

   private:
    TuningDesk& desk_;
    DeskChange change_;
  };

  /// Something has changed values while others may have changed as well: `change.before` has only its own as
  /// they were.
  void tell(const DeskChange& change);
  /// What the values' own controls would change in them before they send.
  virtual void limit(const std::vector<std::size_t>& fields) { (void)fields; }
  /// The same for what no control alone sends, and leaves these values on the chip.
  void send_noted(const std::string& what, Traffic traffic, std::vector<WriteNote::Value> values);
  std::shared_ptr<const WriteNote> note(std::string control, std::vector<WriteNote::Value> values) const;
  /// These values are on their way: what is being verified is what the chip is to hold now.
  void expect(const std::vector<WriteNote::Value>& values);
  /// The full save as the page's traffic. Its values are filled in afterwards.
  virtual FullSave make_save() = 0;
  /// What brings single values to the chip, without the brackets around it.
  virtual Traffic values_traffic(const std::vector<std::size_t>& fields) const;
  /// How long the chip stores after a full save.
  virtual std::chrono::milliseconds settling() const { return {}; }
  /// The brackets of the full save around such traffic.
  virtual Traffic bracketed(Traffic body) const;
  /// The values that a full save leaves on the chip, as the chip then reports them.
  virtual std::vector<WriteNote::Value> save_values() const;

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
  std::set<int> controls_of(const std::vector<std::size_t>& fields) const;
  Task<> run_load() { co_await load_from_chip(); }
  Task<> run_save(Prompts& prompts, Task<> save);
  Task<> run_verify();
  Task<> run_repair(Verification found);
  Task<bool> send_again(std::vector<std::size_t> fields);
  LongTraffic keeping(const std::vector<std::size_t>& fields, std::string done);
  bool take_reply(std::string_view reply);
  void mark_filled(bool filled);

  DeskHost& host_;
  UserDataImage& image_;
  DeskView nobody_;
  DeskView* view_ = &nobody_;
  DeskWatcher* watcher_ = nullptr;
  std::uint64_t asked_at_ = 0;  ///< as the watcher counts, when the chip was asked for the page
  TuningModel& model_;
  bool filled_ = false;  // by the chip or a file
  bool older_than_chip_ = false;
  std::function<void(const std::string&)> unread_told_;
  std::set<std::string> agreed_texts_;
  /// What the chip is to hold since the last full save, and the page's values as they were sent.
  std::vector<WriteNote::Value> sent_;
  std::any saved_;
  bool saved_whole_ = false;
  Flow load_;
  Flow save_;
  Flow verify_;
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
