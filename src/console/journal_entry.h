#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "console/user_data_image.h"

namespace qv5123 {

/// What a crash would take with it.
struct JournalEntry {
  /// What "Save File..." would write.
  UserDataImage image;
  /// The remembered setting file; may be empty.
  std::filesystem::path setting_file;
  /// What no file holds of the font, as its editor tells it; may be empty.
  std::string font = {};
  /// The text that was being typed, behind the name of its edit; may be empty.
  std::string typed = {};
  /// The port in use, as it is shown; may be empty.
  std::string port = {};

  friend bool operator==(const JournalEntry&, const JournalEntry&) = default;
};

/// The content of a journal file:
///
///     QV5123 journal 3
///     file <length in bytes> <path in UTF-8>
///     font <length in bytes> <draft of the font>
///     typed <length in bytes> <text in UTF-8>
///     port <length in bytes> <text in UTF-8>
///     <the 1024 lines of a setting file>
///     sum <8 hex digits: FNV-1a, 32 bits, over all bytes before this line>
std::string journal_text(const JournalEntry& entry);

/// The entry that `text` was made from; nothing unless it is exactly what journal_text() makes, or made
/// before there was the port ("QV5123 journal 2"), so that a half-written, altered or foreign file is never
/// offered as somebody's work.
std::optional<JournalEntry> read_journal(std::string_view text);

}  // namespace qv5123
