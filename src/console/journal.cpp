#include "console/journal.h"

#include <system_error>
#include <utility>

#include "base/delay.h"
#include "console/setting_file.h"
#include "link/command_link.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNotKept = "Unsaved values are not kept for after a crash: ";

}  // namespace

Journal::Journal(Scheduler& scheduler, Background& background, Surroundings surroundings)
    : scheduler_(scheduler),
      background_(background),
      surroundings_(std::move(surroundings)),
      saved_(surroundings_.unsaved().image) {}

fs::path Journal::slot_file(const fs::path& folder, int slot) {
  return folder / ("unsaved-" + std::to_string(slot) + ".journal");
}

Journal::Slots Journal::take_slots(const Surroundings& surroundings) {
  std::error_code error;
  fs::create_directories(surroundings.folder, error);
  clear_put_aside(surroundings.folder);
  Slots slots;
  for (int number = 1; number <= kSlots && !(slots.own && slots.left); ++number) {
    Slot slot{slot_file(surroundings.folder, number), nullptr};
    fs::path lock = slot.file;
    slot.lock = surroundings.lock(lock.replace_extension(".lock"));
    if (slot.lock) look_into(slots, std::move(slot));
  }
  return slots;
}

void Journal::look_into(Slots& slots, Slot slot) {
  std::error_code error;
  if (!fs::exists(slot.file, error)) {
    if (!error && !slots.own) slots.own = std::move(slot);
    return;
  }
  if (slots.left) return;
  std::string text;
  if (!read_whole_file(slot.file, text, kSettingFileLimit).ok()) return;
  // Whatever else lies there under the name is not ours to offer, nor to remove.
  std::optional<JournalEntry> entry = read_journal(text);
  if (!entry) return;
  slots.entry = std::move(*entry);
  slots.age = age_of(slot.file, slots.entry);
  slots.left = std::move(slot);
}

Task<bool> Journal::start(Prompts& prompts) {
  std::function<Slots()> work = [surroundings = surroundings_] { return take_slots(surroundings); };
  Slots slots = co_await background_.run<Slots>(std::move(work));
  own_ = std::move(slots.own);
  if (own_) {
    keeping_.start(keep());
  } else {
    surroundings_.show_status(kNotKept + path_text(surroundings_.folder) + " cannot be used.");
  }
  if (!slots.left) co_return false;
  co_return co_await offer(prompts, std::move(slots));
}

Task<bool> Journal::offer(Prompts& prompts, Slots slots) {
  Question question = restore_question(slots.entry, slots.age);
  const Answer answer = co_await prompts.ask(std::move(question));
  if (answer == Answer::cancel) co_return false;
  if (answer == Answer::yes) {
    surroundings_.restore(slots.entry, slots.age.file_is_newer);
    // At every moment one file or the other holds it.
    const bool kept = own_ && co_await write(slots.entry);
    if (!kept) co_return true;
  } else if (!co_await put_aside(std::move(slots.entry))) {
    co_return false;
  }
  co_await remove(std::move(*slots.left));
  co_return answer == Answer::yes;
}

Task<bool> Journal::put_aside(JournalEntry entry) {
  const fs::path file = put_aside_file(surroundings_.folder, std::chrono::system_clock::now());
  std::function<FileResult()> work = [file, font_file = surroundings_.font_file, entry = std::move(entry)] {
    const auto write_beside = [&file](const char* extension, const std::string& text) {
      return text.empty() ? FileResult{}
                          : write_file_atomically(fs::path(file).replace_extension(extension), text);
    };
    const std::string font = font_file ? font_file(entry.font) : std::string();
    FileResult result =
        font.empty() ? write_beside(".font.txt", entry.font) : write_beside(".font.bin", font);
    if (result.ok()) result = write_beside(".typed.txt", entry.typed);
    return result.ok() ? write_file_atomically(file, setting_text(entry.image)) : result;
  };
  const FileResult result = co_await background_.run<FileResult>(std::move(work));
  if (!result.ok()) {
    surroundings_.show_status("The unsaved values stay where they are: " + result.text);
  } else if (surroundings_.show_done) {
    surroundings_.show_done("The values that were not saved are kept for a week: " + path_text(file));
  }
  co_return result.ok();
}

bool Journal::is_saved(const JournalEntry& entry) const {
  return entry.image == saved_ && entry.font.empty() && entry.typed.empty();
}

Task<> Journal::keep() {
  for (;;) {
    co_await Delay(scheduler_, kInterval);
    JournalEntry entry = surroundings_.unsaved();
    if (!is_saved(entry) && entry != written_) co_await write(std::move(entry));
    // Saved meanwhile, too.
    co_await clear_if_saved();
  }
}

Task<> Journal::clear_if_saved() {
  if (!own_ || !written_ || !is_saved(surroundings_.unsaved())) co_return;
  written_.reset();
  co_await remove(*own_);
}

void Journal::saved(const UserDataImage& image) {
  saved_ = image;
  look_again();
}

void Journal::look_again() {
  if (!clearing_.running()) clearing_.start(clear_if_saved());
}

Task<bool> Journal::write(JournalEntry entry) {
  std::function<FileResult()> work = [file = own_->file, entry] {
    return write_file_atomically(file, journal_text(entry));
  };
  const FileResult result = co_await background_.run<FileResult>(std::move(work));
  if (result.ok()) {
    written_ = std::move(entry);
  } else if (!told_) {
    surroundings_.show_status(kNotKept + result.text);
  }
  // What fails now is tried again in five seconds, and told of once.
  told_ = !result.ok();
  co_return result.ok();
}

Task<> Journal::remove(Slot slot) {
  // The lock goes with the work, after the file.
  std::function<bool()> work = [slot = std::move(slot)] {
    std::error_code error;
    return fs::remove(slot.file, error);
  };
  co_await background_.run<bool>(std::move(work));
}

Task<> Journal::keep_to_the_end() {
  keeping_.cancel();
  clearing_.cancel();
  if (!own_) co_return;
  JournalEntry entry = surroundings_.unsaved();
  if (is_saved(entry)) {
    co_await remove(*std::exchange(own_, std::nullopt));
  } else if (entry != written_) {
    co_await write(std::move(entry));
  }
}

Task<> Journal::end() {
  keeping_.cancel();
  clearing_.cancel();
  if (!own_) co_return;
  co_await remove(*std::exchange(own_, std::nullopt));
}

}  // namespace qv5123
