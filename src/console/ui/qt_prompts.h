#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <map>
#include <string>
#include <utility>

#include "base/background.h"
#include "base/scheduler.h"
#include "console/prompts.h"

class QFileDialog;

namespace qv5123 {

/// The file chooser's name filters for pairs of name and pattern, as
/// "Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||".
QStringList name_filters(const std::string& filter);

/// Asks through window-modal dialogs that are only shown, never executed: the event loop of the program is
/// the only one. A dialog closes with the task that waits for it.
class QtPrompts final : public Prompts {
 public:
  /// The window over which the dialogs open; none before there is one.
  void set_parent(QWidget* parent) { parent_ = parent; }

  /// The folders in which choosers begin, by the kind of file.
  using Folders = std::map<std::string, QString>;
  /// From now on folders are looked at in the background, and for a moment only: one on a network may be
  /// dead. Both must outlive this.
  void look_in(Background& background, Scheduler& scheduler) {
    background_ = &background;
    scheduler_ = &scheduler;
  }
  void set_folders(Folders folders) { folders_ = std::move(folders); }
  const Folders& folders() const { return folders_; }

  Task<> message(Message message) override;
  Task<Answer> ask(Question question) override;
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) override;
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) override;

 private:
  QWidget* parent() const;
  /// Where a chooser of this kind begins.
  Task<QString> folder_of(std::string kind);
  Task<> look_for(QString folder, Resolver<bool> there);
  Task<std::optional<std::filesystem::path>> choose(FileChoice choice, bool save);

  QPointer<QWidget> parent_;
  Folders folders_;
  Background* background_ = nullptr;
  Scheduler* scheduler_ = nullptr;
};

}  // namespace qv5123
