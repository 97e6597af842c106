#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tuning/field.h"

namespace qv5123 {

/// What a page's full save writes beside the chip.
enum class SavedFile {
  none,
  own,       ///< the page's own values into the setting file, with what others left in the user data
  all_pages  ///< the values of every open page that saves
};

/// "registers 0x40 to 0x42, 0x67".
std::string register_runs(const std::set<int>& addresses);
/// The same of the values that a page's full save sends.
std::string saved_registers(const std::vector<FieldInfo>& fields);

/// What "File/Flash Save" does: the file that it writes, whose values that has, and the registers that it
/// sends for the chip to keep. `setting_file` is the one in use; empty where it will be asked for.
std::string save_tip(const std::vector<FieldInfo>& fields, SavedFile file,
                     const std::filesystem::path& setting_file);

}  // namespace qv5123
