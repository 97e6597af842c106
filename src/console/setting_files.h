#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/background.h"
#include "base/scheduler.h"
#include "console/document.h"
#include "console/page_host.h"
#include "console/prompts.h"
#include "console/setting_file.h"
#include "console/setting_file_keeper.h"

namespace qv5123 {

inline constexpr const char* kFileOpenError = "File open error !!";
/// The remembered path stands before it.
inline constexpr const char* kSaveQuestion = "Do you want to save settings to file?\r\n";
inline constexpr const char* kSaveQuestionTitle = "Save setting";
/// Behind the path of a file that is not what this run read or wrote last.
inline constexpr const char* kChangedQuestion =
    " was changed by another program: overwrite, load it, or save under another name?";
/// Behind the path of a file whose disk stands still while the program is to end.
inline constexpr const char* kGoWithoutQuestion = " is still being written.\n\nClose without waiting for it?";

/// Loading and saving the user data image, with what the user is asked and the pages on the way.
class SettingFiles {
 public:
  /// What the flows use. The functions are called anew each time, since pages come into being meanwhile.
  struct Surroundings {
    /// The pages that exist, in the order gamma, AWB, dynamic AE/AWB control, linear matrix, lens shading.
    std::function<std::vector<Page*>()> pages;
    /// The font editor, which joins in SaveEverything; null while it does not exist.
    std::function<Page*()> font_editor;
    /// Shows what did not work in the status bar.
    std::function<void(const std::string&)> show_status;
    /// A setting file was read or written, and holds this image now.
    std::function<void(const std::filesystem::path&, const UserDataImage&)> file_used;
    /// Shows what was done in the status bar.
    std::function<void(const std::string&)> show_done;
    std::function<void(const std::string&)> append_console;
    /// What a save would change in which file, in a sentence, for the question at the end. May be empty.
    std::function<std::string()> what_differs = {};
  };

  /// A write that takes longer is told of.
  static constexpr std::chrono::seconds kSlow{2};

  SettingFiles(CQV5123Doc& document, Prompts& prompts, Background& background, Scheduler& scheduler,
               Surroundings surroundings);

  /// "Load File...", also offered at the start: asks for a file and loads it. `title` is the chooser's.
  Task<> load(const char* title = "Load a setting file");
  /// Reads `path`, remembers it unless it was refused, and lets the pages reload. A message names a file that
  /// cannot be read; the status bar and the console tell what is odd about one that is no whole setting file.
  Task<> load_from(std::filesystem::path path);
  /// "Save File...": every page's values into the image, the remembered file where a page's save includes it,
  /// then the file that the user chooses. It is remembered only where none was.
  Task<> save();
  /// Every page's values into the image, then write_user_data_file(): "Save File..." without the chooser.
  Task<> save_again();
  /// WriteUserDataFile: writes the image to the remembered path; where none was ever chosen asks for one and
  /// remembers it. False when nothing was written.
  Task<bool> write_user_data_file();
  /// SaveEverything: every page's values into the image, then write_user_data_file().
  Task<bool> save_everything();
  /// Every page's values from the image.
  void reload_pages() const;
  /// What "Save File..." would write now; nothing changes by asking.
  UserDataImage unsaved() const;
  /// A run before this one had `path` for its setting file, and its values are restored: the first save over
  /// it keeps a copy, and asks where it `changed` since.
  void remember(const std::filesystem::path& path, bool changed);
  /// The question at the end of the program. True when the program is to end now: answered with No, or with
  /// Yes and the file is whole on the disk or the user would not wait for it.
  Task<bool> may_exit();
  /// Whether a write is under way that the user would not wait for.
  bool given_up() const { return given_up_; }

 private:
  /// Writes, and asks first where the file is not what it was or no setting file. A file that was loaded is
  /// kept beside it once. False when nothing was written.
  Task<bool> write_to(std::filesystem::path path, UserDataImage image);
  Task<Replaced> replace(std::filesystem::path path, UserDataImage image, bool whatever_it_holds);
  Task<> tell_slow(std::string name);
  Task<bool> ask_before_overwriting(std::string oddity);
  void tell_loaded(const std::filesystem::path& path, const std::string& oddity);
  void tell_cancelled(const std::string& written);
  Task<Answer> ask_what_to_do(std::string name);
  Task<bool> write_elsewhere(std::filesystem::path path, UserDataImage image);
  Task<bool> tell_result(std::filesystem::path path, UserDataImage image, Replaced replaced);
  Task<> save_for_exit(std::optional<bool>& saved, Resolver<bool> over);

  CQV5123Doc& document_;
  Prompts& prompts_;
  Background& background_;
  Scheduler& scheduler_;
  Surroundings surroundings_;
  std::shared_ptr<SettingFileKeeper> keeper_ = std::make_shared<SettingFileKeeper>();  // the background's
  std::optional<Resolver<bool>> leaving_;  // while the program's end waits for a save
  bool given_up_ = false;
};

}  // namespace qv5123
