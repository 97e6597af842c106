#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/background.h"
#include "console/document.h"
#include "console/page_host.h"
#include "console/prompts.h"

namespace qv5123 {

inline constexpr const char* kSettingFileFilter = "Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||";
inline constexpr const char* kSettingFileExtension = "dat";
inline constexpr const char* kFileOpenError = "File open error !!";
/// The remembered path stands before it.
inline constexpr const char* kSaveQuestion = "Do you want to save settings to file?\r\n";
inline constexpr const char* kSaveQuestionTitle = "Save setting";

/// Loading and saving the user data image, with what the user is asked and the pages on the way.
class SettingFiles {
 public:
  /// What the flows use. The functions are called anew each time, since pages come into being meanwhile.
  struct Surroundings {
    /// The pages that exist, in the order gamma, AWB, dynamic AE/AWB control, linear matrix, lens shading.
    std::function<std::vector<Page*>()> pages;
    /// The font editor, which joins in SaveEverything; null while it does not exist.
    std::function<Page*()> font_editor;
    /// Shows a result in the status bar.
    std::function<void(const std::string&)> show_status;
    /// A setting file was read or written, and holds this image now.
    std::function<void(const std::filesystem::path&, const UserDataImage&)> file_used;
  };

  SettingFiles(CQV5123Doc& document, Prompts& prompts, Background& background, Surroundings surroundings);

  /// "Load File...", also offered at the start: asks for a file and loads it.
  Task<> load();
  /// Reads `path`, remembers it unless it was refused, and lets the pages reload. A message names a file that
  /// cannot be read.
  Task<> load_from(std::filesystem::path path);
  /// "Save File...": every page's values into the image, the remembered file where a page's save includes it,
  /// then the file that the user chooses. It is remembered only where none was.
  Task<> save();
  /// WriteUserDataFile: writes the image to the remembered path; where none was ever chosen asks for one and
  /// remembers it. False when nothing was written.
  Task<bool> write_user_data_file();
  /// SaveEverything: every page's values into the image, then write_user_data_file().
  Task<bool> save_everything();
  /// Every page's values from the image.
  void reload_pages() const;
  /// What "Save File..." would write now; nothing changes by asking.
  UserDataImage unsaved() const;
  /// The question at the end of the program. True when the program is to end now: answered with No, or with
  /// Yes and the file is whole on the disk.
  Task<bool> may_exit();

 private:
  Task<bool> write_to(std::filesystem::path path, UserDataImage image);

  CQV5123Doc& document_;
  Prompts& prompts_;
  Background& background_;
  Surroundings surroundings_;
};

}  // namespace qv5123
