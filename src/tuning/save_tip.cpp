#include "tuning/save_tip.h"

#include <algorithm>

#include "base/atomic_file.h"
#include "base/hex.h"
#include "base/text.h"

namespace qv5123 {
namespace {

std::string hex(int address) {
  return "0x" + upper_hex(static_cast<unsigned>(address));
}

/// Each run of addresses without a gap as one.
std::vector<std::string> runs_of(const std::set<int>& addresses) {
  std::vector<std::string> runs;
  for (auto at = addresses.begin(); at != addresses.end();) {
    const int first = *at;
    int last = first;
    for (++at; at != addresses.end() && *at == last + 1; ++at) last = *at;
    runs.push_back(last == first ? hex(first)
                                 : hex(first) + (last == first + 1 ? " and " : " to ") + hex(last));
  }
  return runs;
}

std::string file_words(SavedFile file, const std::filesystem::path& setting_file) {
  const std::string name = setting_file.empty() ? "a setting file that you choose"
                                                : "the setting file " + path_text(setting_file.filename());
  if (file == SavedFile::own) return "Writes this page's values to " + name + " and sends ";
  return "Writes the values of all open pages but ISPTune to " + name +
         ", and the font editor's text export where the font has changed, and sends ";
}

}  // namespace

std::string register_runs(const std::set<int>& addresses) {
  return (addresses.size() == 1 ? "register " : "registers ") + joined(runs_of(addresses), ", ");
}

std::string saved_registers(const std::vector<FieldInfo>& fields) {
  std::set<int> addresses;
  for (const FieldInfo& field : fields)
    if (field.saved && field.address != Field::kNowhere) addresses.insert(field.address);
  return register_runs(addresses);
}

std::string save_tip(const std::vector<FieldInfo>& fields, SavedFile file,
                     const std::filesystem::path& setting_file) {
  const auto sent = std::ranges::count_if(fields, [](const FieldInfo& field) { return field.saved; });
  const std::string values =
      std::to_string(sent) + " values for the chip to keep, " + saved_registers(fields);
  if (file == SavedFile::none) return "Sends " + values + ". Writes no file: \"Save File...\" does";
  return file_words(file, setting_file) + values;
}

}  // namespace qv5123
