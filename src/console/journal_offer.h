#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "console/journal_entry.h"
#include "console/prompts.h"

namespace qv5123 {

inline constexpr const char* kRestoreQuestion =
    "The program ended without saving the values of its pages, but they were kept.";
/// Stands below it.
inline constexpr const char* kRestoreDetail =
    "Without them a copy stays for a week: a setting file that can be loaded, and beside it the font and the "
    "text that was being typed.";
/// Stands behind the question where a setting file was in use, before its name.
inline constexpr const char* kRestoreFile = "\n\nThe setting file was: ";
/// Stands behind the name of a setting file that is newer than what was kept.
inline constexpr const char* kRestoreOlder = "\nIt was written after these values were kept.";
inline constexpr const char* kRestoreTitle = "Unsaved values";

/// What a journal and the files around it tell of what was kept.
struct JournalAge {
  std::chrono::seconds age{0};  ///< since it was kept
  std::string when;             ///< "2026-11-22 02:51:01 UTC"; empty where that is not known
  std::size_t differing = 0;  ///< values that its setting file has otherwise, or without one, that are not 0
  bool has_file = false;      ///< its setting file can be read
  bool file_is_newer = false;
};

/// Looks at the journal `file` and at its entry's setting file. May be slow.
JournalAge age_of(const std::filesystem::path& file, const JournalEntry& entry);

/// "less than a minute", "5 minutes", "3 hours", "2 days".
std::string duration_text(std::chrono::seconds time);

/// Where a setting file of what the user would not go on with is put, beside the journals.
std::filesystem::path put_aside_file(const std::filesystem::path& folder,
                                     std::chrono::system_clock::time_point now);
/// Removes those that are older than a week.
void clear_put_aside(const std::filesystem::path& folder);

/// Its buttons have no letters: none of them is pressed by mistake.
Question restore_question(const JournalEntry& entry, const JournalAge& age);

}  // namespace qv5123
