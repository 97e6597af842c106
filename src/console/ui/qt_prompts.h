#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <map>
#include <string>
#include <utility>

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
  void set_folders(Folders folders) { folders_ = std::move(folders); }
  const Folders& folders() const { return folders_; }

  Task<> message(Message message) override;
  Task<Answer> ask(Question question) override;
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) override;
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) override;

 private:
  QWidget* parent() const;
  /// Where a chooser of this kind begins.
  QString folder_of(const std::string& kind) const;
  Task<std::optional<std::filesystem::path>> choose(FileChoice choice, bool save);

  QPointer<QWidget> parent_;
  Folders folders_;
};

}  // namespace qv5123
