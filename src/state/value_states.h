#pragma once

#include <bitset>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/command_link.h"
#include "state/value_events.h"
#include "tuning/desk_watcher.h"
#include "tuning/page_model.h"
#include "tuning/value_mark.h"
#include "tuning/verification.h"

namespace qv5123 {

/// What is known of a value on the chip, the best last.
enum class Known {
  nothing,   ///< never read, or something has happened since that may have changed it
  sent,      ///< all of it left, and nobody has looked
  read,      ///< the chip has reported it
  verified,  ///< sent, and then reported as it was sent
};

struct ChipValue {
  Known how = Known::nothing;
  int number = 0;  ///< as a page shows it; of no meaning while nothing is known
  std::chrono::system_clock::time_point when;
};

/// A value in the three places where it can be.
struct ValueState {
  std::optional<int> page;  ///< nothing while the page was not opened
  ChipValue chip;
  std::optional<int> file;  ///< nothing without a setting file, and for what none keeps
  /// Changed in the page since it was last sent or loaded.
  bool touched = false;
};

/// What the chip reports of a value that has an entry, once it has taken all of `image`, from which the page
/// has loaded `number`: of one beyond its range the page takes the nearest, and the chip the bytes.
int taken_from_image(const FieldInfo& field, int number, const UserDataImage& image);

/// Keeps account of every value of the tuning pages: what the page holds, what the chip was last known to
/// hold, and what the setting file holds. It goes by what the desks tell and by what leaves on the wire,
/// whoever sends it, and costs no traffic. Pages count by their place in kTuningPages; they need not be open.
///
/// All calls belong to the scheduler's thread.
class ValueStates final : public DeskWatcher {
 public:
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  explicit ValueStates(CommandLink& link, Clock clock = std::chrono::system_clock::now);
  ValueStates(const ValueStates&) = delete;
  ValueStates& operator=(const ValueStates&) = delete;
  ~ValueStates();

  std::size_t pages() const { return pages_.size(); }
  /// The page of that name, one of kTuningPages.
  std::size_t page_named(std::string_view name) const;
  const std::string& page_name(std::size_t page) const { return pages_[page].name; }
  const std::vector<FieldInfo>& fields(std::size_t page) const { return pages_[page].model->fields(); }
  /// "awb.a_slope": the names of a page and a field of it.
  std::string full_name(std::size_t page, std::size_t field) const {
    return page_name(page) + "." + fields(page)[field].name;
  }
  /// The numbers of values that a model of the page kept.
  std::vector<int> numbers_of(std::size_t page, const std::any& kept) const;
  /// Null while the page was not opened.
  TuningDesk* desk(std::size_t page) const { return pages_[page].desk; }

  std::vector<ValueState> states(std::size_t at) const;
  ValueState state(std::size_t at, std::size_t field) const;
  ValueMark mark(std::size_t page, std::size_t field) const;
  static ValueMark mark_of(const FieldInfo& field, const ValueState& state);
  /// "chip 12, file 20"; what is not known is left out.
  static std::string other_values(const FieldInfo& field, const ValueState& state);
  /// Whether something of the page has not reached the chip, or not the file.
  bool unsent_or_unsaved(std::size_t page) const;

  /// The setting file now holds this.
  void file_is(const UserDataImage& image);
  const std::optional<UserDataImage>& file() const { return file_; }
  /// All of this image has left for the chip, which takes it as its own.
  void image_sent(const UserDataImage& image);
  /// The chip has answered a page's trigger, for who asked without a desk. False when the reply ends too
  /// early.
  bool page_reported(std::size_t at, std::string_view reply, std::uint64_t asked_at);
  /// Calls `told` with everything that left, in order, for as long as this exists.
  void on_write(WriteListener told) { write_listeners_.push_back(std::move(told)); }
  /// Calls `told` when something may have changed, page, chip or file; once for all that happens at a time.
  void on_change(std::function<void()> told) { change_listeners_.push_back(std::move(told)); }
  /// Calls `told` with each change of a page that can be taken back.
  using ChangeListener = std::function<void(TuningDesk&, const DeskChange&)>;
  void on_desk_change(ChangeListener told) { desk_listeners_.push_back(std::move(told)); }
  /// What came of reading a page back for who did so without a desk.
  void page_verified(std::size_t page, const std::vector<WriteNote::Value>& sent,
                     const Verification& verification, std::uint64_t asked_at) {
    if (verification.reported > 0) take_verified(pages_[page], sent, verification, asked_at);
  }
  /// Whether pages are read back after their full saves.
  void verify_saves(bool on) { verifies_saves_ = on; }
  /// Calls `told` with what came of reading a page back after its save; with null when that begins.
  using VerificationListener = std::function<void(TuningDesk&, const Verification*)>;
  void on_verification(VerificationListener told) { verification_listeners_.push_back(std::move(told)); }
  /// Calls `told` when a page's full save begins: what was found of it last is past.
  void on_save(std::function<void(TuningDesk&)> told) { save_listeners_.push_back(std::move(told)); }
  /// Calls `told` when a page is closed.
  void on_close(std::function<void(TuningDesk&)> told) { close_listeners_.push_back(std::move(told)); }
  /// Whether the value was brought to the chip since so many jobs had left, and whether with a full save.
  enum class Sent { no, alone, with_save };
  Sent sent_since(std::size_t page, std::size_t field, std::uint64_t jobs) const;

  void opened(TuningDesk& desk) override;
  void closed(TuningDesk& desk) override;
  void changed(TuningDesk& desk, const DeskChange& change) override;
  void restored(TuningDesk& desk) override;
  std::uint64_t jobs() const override { return jobs_; }
  void reported(TuningDesk& desk, std::string_view reply, std::uint64_t asked_at) override;
  bool verifies_saves() const override { return verifies_saves_; }
  void saves(TuningDesk& desk) override;
  void verifies(TuningDesk& desk) override;
  void verified(TuningDesk& desk, const std::vector<WriteNote::Value>& sent, const Verification& verification,
                std::uint64_t asked_at) override;

 private:
  struct Value {
    ChipValue chip;
    std::optional<int> file;
    bool touched = false;
    std::uint64_t written_at = 0;  ///< as a count of jobs, whoever may have written it
    std::uint64_t sent_at = 0;     ///< by its page
    bool with_save = false;
  };
  struct Page {
    std::string name;
    std::unique_ptr<TuningModel> model;  ///< for decoding; what it holds means nothing
    TuningDesk* desk = nullptr;
    std::vector<Value> values;
    std::vector<ValueMark> shown;  ///< the marks that the desk's view was given last
  };

  Page* page_of(const TuningDesk& desk);
  ValueState state_of(const Page& page, std::size_t field, const std::vector<int>& numbers) const;
  void job_over(const SentJob& job);
  void take_noted(const SentJob& job, WriteEvent& event);
  void take_undescribed(const SentJob& job);
  void take_verified(Page& page, const std::vector<WriteNote::Value>& sent, const Verification& verification,
                     std::uint64_t asked_at);
  void follow_video_mode(const WriteNote& note);
  void forget_chip();
  void forget(const std::bitset<256>& registers);
  void tell_changed();
  void show_marks();
  void show_marks(Page& page, const std::vector<ValueState>& states);
  template <class Does>
  void each_value(Does does);

  Scheduler& scheduler_;
  Clock clock_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  bool change_posted_ = false;
  std::vector<Page> pages_;
  std::bitset<256> value_registers_;
  std::optional<UserDataImage> file_;
  std::uint64_t jobs_ = 0;
  std::vector<WriteListener> write_listeners_;
  std::vector<std::function<void()>> change_listeners_;
  std::vector<ChangeListener> desk_listeners_;
  std::vector<std::function<void(TuningDesk&)>> close_listeners_;
  std::vector<VerificationListener> verification_listeners_;
  std::vector<std::function<void(TuningDesk&)>> save_listeners_;
  bool verifies_saves_ = false;
};

}  // namespace qv5123
