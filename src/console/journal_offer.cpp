#include "console/journal_offer.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/text.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShown = 200;  // of a path or a text: a journal may claim any
constexpr std::string_view kPutAside = "put-aside-";
constexpr std::chrono::hours kWeek{7 * 24};

/// "2026-11-22 02:51:01".
std::string shown_time(std::chrono::system_clock::time_point time) {
  constexpr std::size_t kToSeconds = 19;
  std::string text = iso_time(time).substr(0, kToSeconds);
  text[text.find('T')] = ' ';
  return text;
}

std::size_t differing(const UserDataImage& a, const UserDataImage& b) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) count += a.entry(i) != b.entry(i) ? 1 : 0;
  return count;
}

std::string what_was_kept(const JournalEntry& entry, const JournalAge& age) {
  std::string text = "\n\nKept " + duration_text(age.age) + " ago" +
                     (age.when.empty() ? "" : " (" + age.when + ")") + ": " +
                     counted(age.differing, "value") +
                     (age.has_file ? " that the setting file has otherwise." : " other than 0.");
  if (!entry.font.empty()) text += "\nThe font that was edited is kept as well.";
  if (!entry.typed.empty()) text += "\nBeing typed: " + elided(entry.typed, kShown);
  if (!entry.port.empty()) text += "\nThe port was: " + elided(entry.port, kShown);
  return text;
}

}  // namespace

std::string duration_text(std::chrono::seconds time) {
  const auto minutes =
      static_cast<std::size_t>(std::chrono::duration_cast<std::chrono::minutes>(time).count());
  if (minutes < 1) return "less than a minute";
  if (minutes < 60) return counted(minutes, "minute");
  if (minutes < 48 * 60) return counted(minutes / 60, "hour");
  return counted(minutes / (24 * 60), "day");
}

JournalAge age_of(const fs::path& file, const JournalEntry& entry) {
  JournalAge age;
  std::error_code error;
  const fs::file_time_type kept = fs::last_write_time(file, error);
  if (error) return age;
  age.age =
      std::max(std::chrono::seconds(0),
               std::chrono::duration_cast<std::chrono::seconds>(fs::file_time_type::clock::now() - kept));
  age.when = shown_time(std::chrono::system_clock::now() - age.age) + " UTC";
  const ReadSettings settings = read_setting_file(entry.setting_file);
  age.has_file = settings.result.ok();
  age.differing = differing(entry.image, settings.image);
  const fs::file_time_type written = fs::last_write_time(entry.setting_file, error);
  age.file_is_newer = !error && written > kept;
  return age;
}

fs::path put_aside_file(const fs::path& folder, std::chrono::system_clock::time_point now) {
  std::string stamp = shown_time(now);
  std::ranges::replace(stamp, ' ', '-');
  std::erase(stamp, ':');
  return folder / (std::string(kPutAside) + stamp + ".dat");
}

void clear_put_aside(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> old;
  for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
    if (!path_text(file->path().filename()).starts_with(kPutAside)) continue;
    std::error_code unknown;
    const fs::file_time_type written = fs::last_write_time(file->path(), unknown);
    if (!unknown && fs::file_time_type::clock::now() - written > kWeek) old.push_back(file->path());
  }
  for (const fs::path& file : old) fs::remove(file, error);
}

Question restore_question(const JournalEntry& entry, const JournalAge& age) {
  Question question;
  question.title = kRestoreTitle;
  question.text = kRestoreQuestion + what_was_kept(entry, age);
  const std::string file = path_text(entry.setting_file);
  if (!file.empty()) question.text += kRestoreFile + elided(file, kShown);
  if (age.file_is_newer) question.text += kRestoreOlder;
  question.buttons = Question::Buttons::yes_no_cancel;
  question.yes_text = "Go on with these values";
  question.no_text = "Start without them";
  question.cancel_text = "Ask again at the next start";
  question.detail = kRestoreDetail;
  return question;
}

}  // namespace qv5123
