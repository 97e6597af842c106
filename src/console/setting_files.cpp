#include "console/setting_files.h"

#include <functional>
#include <utility>

#include "base/delay.h"

namespace qv5123 {
namespace {

FileChoice setting_file_choice(const char* title) {
  return {kSettingFileFilter, kSettingFileExtension, {}, title, kSettingFileExtension};
}

constexpr const char* kWritten = "Setting file written: ";
/// The user who waits for a disk that stands still is asked again after this time.
constexpr std::chrono::seconds kAskAgain{10};

}  // namespace

SettingFiles::SettingFiles(CQV5123Doc& document, Prompts& prompts, Background& background,
                           Scheduler& scheduler, Surroundings surroundings)
    : document_(document),
      prompts_(prompts),
      background_(background),
      scheduler_(scheduler),
      surroundings_(std::move(surroundings)) {}

Task<> SettingFiles::load(const char* title) {
  FileChoice choice = setting_file_choice(title);
  std::optional<std::filesystem::path> path = co_await prompts_.choose_open(std::move(choice));
  if (path) co_await load_from(std::move(*path));
}

Task<> SettingFiles::load_from(std::filesystem::path path) {
  std::function<ReadSettings()> work = [keeper = keeper_, path] { return keeper->load(path); };
  const ReadSettings read = co_await background_.run<ReadSettings>(std::move(work));
  // Not before: a save meanwhile holds the image of the file that was remembered until now. And never what
  // was no setting file, or the next save would put one in its place.
  if (!read.result.refused) document_.setting_file = path;
  if (read.image.loaded()) document_.user_data = read.image;
  // Even without a file: the pages show what the image holds, and so agree with each other again.
  reload_pages();
  if (read.result.ok()) {
    surroundings_.file_used(path, document_.user_data);
    co_return tell_loaded(path, read.oddity);
  }
  Message message = warning(read.result.text);
  co_await prompts_.message(std::move(message));
}

void SettingFiles::tell_loaded(const std::filesystem::path& path, const std::string& oddity) {
  if (oddity.empty()) return surroundings_.show_done("Setting file loaded: " + path_text(path));
  surroundings_.show_status(oddity);
  surroundings_.append_console("\r\n" + oddity);
}

void SettingFiles::remember(const std::filesystem::path& path, bool changed) {
  if (path.empty()) return;
  std::function<bool()> work = [keeper = keeper_, path, changed] {
    keeper->remember(path, changed);
    return true;
  };
  const Task<bool> begun = background_.run<bool>(std::move(work));
}

Task<> SettingFiles::save() {
  // Some pages' save includes the remembered file: it holds what was saved up to the last of them. Written
  // once for all of them, and where no file was chosen yet the question below is the one to answer.
  std::optional<UserDataImage> remembered;
  for (Page* page : surroundings_.pages()) {
    page->save_to_user_data();
    if (page->save_writes_file()) remembered = document_.user_data;
  }
  const std::filesystem::path also = remembered ? document_.setting_file : std::filesystem::path();
  const bool also_written = !also.empty() && co_await write_to(also, *remembered);
  FileChoice choice = setting_file_choice("Save the settings of all pages");
  choice.initial_name = path_text(document_.setting_file.filename());
  std::optional<std::filesystem::path> path = co_await prompts_.choose_save(std::move(choice));
  if (!path) co_return tell_cancelled(also_written ? path_text(also) : "");
  const bool written = co_await write_to(*path, document_.user_data);
  if (written && document_.setting_file.empty()) document_.setting_file = *path;
}

void SettingFiles::tell_cancelled(const std::string& written) {
  surroundings_.show_done(written.empty() ? "No setting file was written"
                                          : std::string(kWritten) + written + ", and no other file");
}

Task<bool> SettingFiles::write_user_data_file() {
  if (document_.setting_file.empty()) {
    FileChoice choice = setting_file_choice("Choose the setting file to write");
    std::optional<std::filesystem::path> path = co_await prompts_.choose_save(std::move(choice));
    if (!path) co_return false;
    document_.setting_file = std::move(*path);
  }
  co_return co_await write_to(document_.setting_file, document_.user_data);
}

Task<> SettingFiles::save_again() {
  for (Page* page : surroundings_.pages()) page->save_to_user_data();
  co_await write_user_data_file();
}

Task<bool> SettingFiles::save_everything() {
  for (Page* page : surroundings_.pages()) page->save_to_user_data();
  if (Page* editor = surroundings_.font_editor()) editor->save_to_user_data();
  co_return co_await write_user_data_file();
}

void SettingFiles::reload_pages() const {
  for (Page* page : surroundings_.pages()) page->reload_from_user_data();
}

UserDataImage SettingFiles::unsaved() const {
  UserDataImage image = document_.user_data;
  for (const Page* page : surroundings_.pages()) page->put_values(image);
  return image;
}

Task<bool> SettingFiles::may_exit() {
  Question question;
  question.text = path_text(document_.setting_file) + kSaveQuestion;
  question.title = kSaveQuestionTitle;
  question.buttons = Question::Buttons::yes_no_cancel;
  if (surroundings_.what_differs) question.detail = surroundings_.what_differs();
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer == Answer::cancel) co_return false;
  if (Page* editor = surroundings_.font_editor()) {
    const bool leaves = co_await editor->may_leave();
    if (!leaves) co_return false;
  }
  if (answer == Answer::no) co_return true;
  // A save that failed, or that was given up when asked for a file, must not take the work with it.
  const Resolver<bool> over;
  leaving_ = over;
  given_up_ = false;
  std::optional<bool> saved;
  const Flow saving(save_for_exit(saved, over));
  if (!saved) co_await over.pending();
  leaving_.reset();
  co_return saved.value_or(given_up_);
}

Task<> SettingFiles::save_for_exit(std::optional<bool>& saved, Resolver<bool> over) {
  saved = co_await save_everything();
  // Posted, since who waits for it ends this flow.
  scheduler_.post([over] { over.resolve(true); });
}

Task<bool> SettingFiles::write_to(std::filesystem::path path, UserDataImage image) {
  Replaced replaced = co_await replace(path, image, false);
  if (replaced.changed) {
    const Answer answer = co_await ask_what_to_do(path_text(path));
    if (answer == Answer::cancel) co_return co_await write_elsewhere(std::move(path), image);
    if (answer == Answer::no) co_await load_from(path);
    if (answer == Answer::no) co_return false;
  }
  if (!replaced.changed && !replaced.oddity.empty()) {
    const bool wanted = co_await ask_before_overwriting(replaced.oddity);
    if (!wanted) co_return false;
  }
  // The user has decided.
  if (!replaced.written() && replaced.result.ok()) replaced = co_await replace(path, image, true);
  co_return co_await tell_result(std::move(path), image, replaced);
}

Task<Answer> SettingFiles::ask_what_to_do(std::string name) {
  Question question;
  question.text = name + kChangedQuestion;
  question.title = kSaveQuestionTitle;
  question.buttons = Question::Buttons::yes_no_cancel;
  question.yes_text = "Overwrite";
  question.no_text = "Load it";
  question.cancel_text = "Save under another name...";
  question.preferred = Answer::cancel;
  co_return co_await prompts_.ask(std::move(question));
}

Task<bool> SettingFiles::ask_before_overwriting(std::string oddity) {
  Question question = careful_question(
      "This is no whole setting file.\n\n" + oddity + "\n\nWrite the settings over it?", kSaveQuestionTitle);
  co_return co_await prompts_.ask(std::move(question)) == Answer::yes;
}

Task<bool> SettingFiles::write_elsewhere(std::filesystem::path path, UserDataImage image) {
  FileChoice choice = setting_file_choice("Save the settings under another name");
  std::optional<std::filesystem::path> other = co_await prompts_.choose_save(std::move(choice));
  if (!other) co_return false;
  const bool written = co_await write_to(*other, image);
  // The one that somebody else writes is not written again.
  if (written && document_.setting_file == path) document_.setting_file = *other;
  co_return written;
}

Task<Replaced> SettingFiles::replace(std::filesystem::path path, UserDataImage image,
                                     bool whatever_it_holds) {
  const Flow slow(tell_slow(path_text(path)));
  std::function<Replaced()> work = [keeper = keeper_, path, image, whatever_it_holds] {
    return keeper->replace(path, image, whatever_it_holds);
  };
  co_return co_await background_.run<Replaced>(std::move(work));
}

Task<> SettingFiles::tell_slow(std::string name) {
  co_await Delay(scheduler_, kSlow);
  surroundings_.show_status("Still writing " + name + " ...");
  while (leaving_) {
    Question question = careful_question(name + kGoWithoutQuestion, kSaveQuestionTitle);
    const Answer answer = co_await prompts_.ask(std::move(question));
    if (answer == Answer::yes && leaving_) {
      given_up_ = true;
      // Posted, since who waits for it ends this flow.
      scheduler_.post([over = *leaving_] { over.resolve(true); });
      co_return;
    }
    co_await Delay(scheduler_, kAskAgain);
  }
}

Task<bool> SettingFiles::tell_result(std::filesystem::path path, UserDataImage image, Replaced replaced) {
  if (replaced.result.ok()) {
    surroundings_.file_used(path, image);
    std::string text = kWritten + path_text(path);
    if (replaced.copied) text += " (as it was: " + path_text(copy_beside(path.filename())) + ")";
    if (!replaced.copy_trouble.empty()) text += " (not kept as it was: " + replaced.copy_trouble + ")";
    surroundings_.show_done(text);
    co_return true;
  }
  surroundings_.show_status(replaced.result.text);
  Message message = warning(kFileOpenError);
  co_await prompts_.message(std::move(message));
  co_return false;
}

}  // namespace qv5123
