#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/atomic_file.h"
#include "base/background.h"
#include "base/scheduler.h"
#include "base/task.h"
#include "console/journal_entry.h"
#include "console/journal_offer.h"
#include "console/prompts.h"

namespace qv5123 {

/// Keeps what is not saved in a file of its own, and finds what a run left there that did not come to its
/// end. Each running program has one of a few slots, a file and a lock beside it, so that none writes over
/// another's; the slot of a program that died is the one that is offered.
class Journal {
 public:
  /// How often it is looked for changes; at most one file is written in this time.
  static constexpr std::chrono::seconds kInterval{5};
  static constexpr int kSlots = 16;

  /// Holds a slot until it goes.
  using Lock = std::shared_ptr<void>;
  struct Surroundings {
    /// The folder of the journals; made when it is needed.
    std::filesystem::path folder;
    /// Locks through the file that is named; null while a living process holds it. Called in the background.
    std::function<Lock(const std::filesystem::path&)> lock;
    /// What a save would write now.
    std::function<JournalEntry()> unsaved;
    /// Takes over what the user wants back. `file_is_newer`: its setting file was written since.
    std::function<void(const JournalEntry&, bool file_is_newer)> restore;
    /// Shows in the status bar what did not work.
    std::function<void(const std::string&)> show_status;
    /// The same for what was done. May be empty.
    std::function<void(const std::string&)> show_done = {};
    /// What a draft of the font holds as a file that can be opened; empty for what is none. Called in the
    /// background. May be empty: the draft is then put aside as it is.
    std::function<std::string(const std::string& draft)> font_file = {};
  };

  /// What `unsaved` tells now counts as saved.
  Journal(Scheduler& scheduler, Background& background, Surroundings surroundings);

  /// Takes a slot, keeps the journal from then on, and offers what was left in another slot. True when it was
  /// restored; its old file goes once it is journalled anew. What the user would not go on with is put aside
  /// for a week.
  Task<bool> start(Prompts& prompts);
  /// A file holds this image now. What is kept goes at once where nothing else is unsaved.
  void saved(const UserDataImage& image);
  /// Something else than the image was saved.
  void look_again();
  /// The end that nobody was asked about: what is not saved is kept for the next start, as after a crash.
  Task<> keep_to_the_end();
  /// The end as it should be: what is not saved is not wanted.
  Task<> end();

  /// The journal of a slot, 1..kSlots.
  static std::filesystem::path slot_file(const std::filesystem::path& folder, int slot);

 private:
  struct Slot {
    std::filesystem::path file;
    Lock lock;
  };
  /// What there was to take.
  struct Slots {
    std::optional<Slot> own;
    std::optional<Slot> left;
    JournalEntry entry;  ///< of `left`
    JournalAge age;
  };
  static Slots take_slots(const Surroundings& surroundings);
  static void look_into(Slots& slots, Slot slot);

  Task<bool> offer(Prompts& prompts, Slots slots);
  bool is_saved(const JournalEntry& entry) const;
  Task<> keep();
  Task<> clear_if_saved();
  Task<bool> write(JournalEntry entry);
  Task<> remove(Slot slot);
  /// False when there is no copy; then the journal stays.
  Task<bool> put_aside(JournalEntry entry);

  Scheduler& scheduler_;
  Background& background_;
  const Surroundings surroundings_;
  UserDataImage saved_;
  std::optional<Slot> own_;
  std::optional<JournalEntry> written_;  ///< what the file holds, as far as it could be written
  bool told_ = false;                    ///< that it cannot be written at the moment
  Flow keeping_;
  Flow clearing_;
};

}  // namespace qv5123
