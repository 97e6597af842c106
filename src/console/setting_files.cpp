#include "console/setting_files.h"

#include <optional>
#include <utility>

#include "console/setting_file.h"

namespace qv5123 {
namespace {

FileChoice setting_file_choice() {
  return {kSettingFileFilter, kSettingFileExtension, {}};
}

Message warning(std::string text) {
  Message message;
  message.text = std::move(text);
  message.icon = Message::Icon::warning;
  return message;
}

}  // namespace

SettingFiles::SettingFiles(CQV5123Doc& document, Prompts& prompts, Background& background,
                           Surroundings surroundings)
    : document_(document),
      prompts_(prompts),
      background_(background),
      surroundings_(std::move(surroundings)) {}

Task<> SettingFiles::load() {
  FileChoice choice = setting_file_choice();
  std::optional<std::filesystem::path> path = co_await prompts_.choose_open(std::move(choice));
  if (path) co_await load_from(std::move(*path));
}

Task<> SettingFiles::load_from(std::filesystem::path path) {
  const FileResult result = co_await read_setting_file(background_, path, document_.user_data);
  // Not before: a save meanwhile holds the image of the file that was remembered until now. And never what
  // was no setting file, or the next save would put one in its place.
  if (!result.refused) document_.setting_file = path;
  // Even without a file: the pages show what the image holds, and so agree with each other again.
  reload_pages();
  if (result.ok()) {
    surroundings_.file_used(path, document_.user_data);
    co_return;
  }
  Message message = warning(result.text);
  co_await prompts_.message(std::move(message));
}

Task<> SettingFiles::save() {
  // Some pages' save includes the remembered file: it holds what was saved up to the last of them. Written
  // once for all of them, and where no file was chosen yet the question below is the one to answer.
  std::optional<UserDataImage> remembered;
  for (Page* page : surroundings_.pages()) {
    page->save_to_user_data();
    if (page->save_writes_file()) remembered = document_.user_data;
  }
  if (remembered && !document_.setting_file.empty()) co_await write_to(document_.setting_file, *remembered);
  FileChoice choice = setting_file_choice();
  choice.initial_name = path_text(document_.setting_file.filename());
  std::optional<std::filesystem::path> path = co_await prompts_.choose_save(std::move(choice));
  if (!path) co_return;
  const bool written = co_await write_to(*path, document_.user_data);
  if (written && document_.setting_file.empty()) document_.setting_file = *path;
}

Task<bool> SettingFiles::write_user_data_file() {
  if (document_.setting_file.empty()) {
    FileChoice choice = setting_file_choice();
    std::optional<std::filesystem::path> path = co_await prompts_.choose_save(std::move(choice));
    if (!path) co_return false;
    document_.setting_file = std::move(*path);
  }
  co_return co_await write_to(document_.setting_file, document_.user_data);
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
  const Answer answer = co_await prompts_.ask(std::move(question));
  if (answer == Answer::no) co_return true;
  if (answer == Answer::cancel) co_return false;
  // A save that failed, or that was given up when asked for a file, must not take the work with it.
  co_return co_await save_everything();
}

Task<bool> SettingFiles::write_to(std::filesystem::path path, UserDataImage image) {
  const FileResult result = co_await write_setting_file(background_, path, image);
  if (result.ok()) {
    surroundings_.file_used(path, image);
    co_return true;
  }
  surroundings_.show_status(result.text);
  Message message = warning(kFileOpenError);
  co_await prompts_.message(std::move(message));
  co_return false;
}

}  // namespace qv5123
