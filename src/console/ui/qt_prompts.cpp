#include "console/ui/qt_prompts.h"

#include <QApplication>
#include <QChildEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// A folder that does not answer for so long is as good as gone.
constexpr std::chrono::milliseconds kLookPatience{700};

/// Owns a dialog for as long as a task waits for it.
class OpenDialog {
 public:
  explicit OpenDialog(QDialog* dialog) : dialog_(dialog) {}
  OpenDialog(const OpenDialog&) = delete;
  OpenDialog& operator=(const OpenDialog&) = delete;
  ~OpenDialog() {
    if (!dialog_) return;
    dialog_->hide();
    // It may be its own signal that ends the task.
    dialog_->deleteLater();
  }

  Pending<int> finished() {
    // Queued, so that what the answer starts does not run inside the dialog's own close.
    QObject::connect(
        dialog_, &QDialog::finished, dialog_, [done = done_](int result) { done.resolve(result); },
        Qt::QueuedConnection);
    // The program may close what it stands over, which takes this dialog with it.
    QObject::connect(
        dialog_, &QObject::destroyed, qApp, [done = done_] { done.resolve(QDialog::Rejected); },
        Qt::QueuedConnection);
    dialog_->open();
    return done_.pending();
  }

 private:
  QPointer<QDialog> dialog_;
  Resolver<int> done_;
};

/// The chooser has messages of its own, with the name of a file in them: they guess whether that is markup.
class PlainMessages final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::ChildPolished) return false;
    auto* box = qobject_cast<QMessageBox*>(static_cast<QChildEvent*>(event)->child());
    if (box) box->setTextFormat(Qt::PlainText);
    return false;
  }
};

QMessageBox* message_box(const std::string& title, const std::string& text, QMessageBox::Icon icon,
                         QMessageBox::StandardButtons buttons, QWidget* parent) {
  const QString shown = to_qt(text).remove(u'\r').trimmed();
  auto* box = new QMessageBox(icon, to_qt(title), shown, buttons, parent);
  box->setTextFormat(Qt::PlainText);
  box->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
  return box;
}

QMessageBox::Icon icon_of(Message::Icon icon) {
  switch (icon) {
    case Message::Icon::warning:
      return QMessageBox::Warning;
    case Message::Icon::stop:
      return QMessageBox::Critical;
    default:
      return QMessageBox::Information;
  }
}

QMessageBox::StandardButtons buttons_of(Question::Buttons buttons) {
  switch (buttons) {
    case Question::Buttons::yes_no:
      return QMessageBox::Yes | QMessageBox::No;
    case Question::Buttons::yes_no_cancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    default:
      return QMessageBox::Ok | QMessageBox::Cancel;
  }
}

/// The box's own button for an answer; null where it has none.
QPushButton* button_for(const QMessageBox& box, Answer answer) {
  const auto first = [&box](QMessageBox::StandardButton one, QMessageBox::StandardButton other) {
    auto* button = box.button(one);
    return qobject_cast<QPushButton*>(button ? button : box.button(other));
  };
  if (answer == Answer::yes) return first(QMessageBox::Yes, QMessageBox::Ok);
  return answer == Answer::no ? first(QMessageBox::No, QMessageBox::No)
                              : first(QMessageBox::Cancel, QMessageBox::Cancel);
}

void name_button(const QMessageBox& box, Answer answer, const std::string& text) {
  QPushButton* button = button_for(box, answer);
  if (button && !text.empty()) button->setText(to_qt(text));
}

void add_detail(QMessageBox& box, const std::string& text) {
  if (text.empty()) return;
  box.setInformativeText(to_qt(text));
  // The box's own text format is not for this one.
  if (auto* label = box.findChild<QLabel*>("qt_msgbox_informativelabel")) label->setTextFormat(Qt::PlainText);
}

QMessageBox* question_box(const Question& question, QWidget* parent) {
  auto* box =
      message_box(question.title, question.text, QMessageBox::Question, buttons_of(question.buttons), parent);
  name_button(*box, Answer::yes, question.yes_text);
  name_button(*box, Answer::no, question.no_text);
  name_button(*box, Answer::cancel, question.cancel_text);
  add_detail(*box, question.detail);
  if (question.preferred) box->setDefaultButton(button_for(*box, *question.preferred));
  return box;
}

Answer answer_of(int button) {
  if (button == QMessageBox::Yes || button == QMessageBox::Ok) return Answer::yes;
  return button == QMessageBox::No ? Answer::no : Answer::cancel;
}

}  // namespace

QStringList name_filters(const std::string& filter) {
  const QStringList parts = to_qt(filter).split(u'|', Qt::SkipEmptyParts);
  QStringList result;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // Qt takes the patterns from the last brackets; a name may carry others or none.
    const QString name = parts[i].left(parts[i].indexOf(u'(')).trimmed();
    const QString patterns = QString(parts[i + 1]).replace(u';', u' ');
    result << QStringLiteral("%1 (%2)").arg(name, patterns == "*.*" ? QStringLiteral("*") : patterns);
  }
  return result;
}

QWidget* QtPrompts::parent() const {
  // Over a dialog that is open already, not behind it.
  QWidget* modal = QApplication::activeModalWidget();
  return modal ? modal : parent_.data();
}

Task<> QtPrompts::message(Message message) {
  OpenDialog dialog(
      message_box(message.title, message.text, icon_of(message.icon), QMessageBox::Ok, parent()));
  co_await dialog.finished();
}

Task<Answer> QtPrompts::ask(Question question) {
  OpenDialog dialog(question_box(question, parent()));
  co_return answer_of(co_await dialog.finished());
}

Task<std::optional<std::filesystem::path>> QtPrompts::choose_open(FileChoice choice) {
  co_return co_await this->choose(std::move(choice), false);
}

Task<std::optional<std::filesystem::path>> QtPrompts::choose_save(FileChoice choice) {
  co_return co_await this->choose(std::move(choice), true);
}

Task<> QtPrompts::look_for(QString folder, Resolver<bool> there) {
  std::function<bool()> look = [folder] { return QFileInfo(folder).isDir(); };
  const bool found = co_await background_->run<bool>(std::move(look));
  // Posted, since who waits for it ends this flow.
  scheduler_->post([there, found] { there.resolve(found); });
}

Task<QString> QtPrompts::folder_of(std::string kind) {
  const auto remembered = folders_.find(kind);
  if (remembered == folders_.end()) co_return QDir::currentPath();
  const QString folder = remembered->second;
  const Resolver<bool> there;
  if (background_) {
    const Flow looking(look_for(folder, there));
    const auto timer = scheduler_->call_after(kLookPatience, [there] { there.resolve(false); });
    co_await there.pending();
    scheduler_->cancel(timer);
  } else {
    there.resolve(QFileInfo(folder).isDir());
  }
  const bool found = co_await there.pending();
  co_return found ? folder : QDir::currentPath();
}

Task<std::optional<std::filesystem::path>> QtPrompts::choose(FileChoice choice, bool save) {
  const QString folder = co_await folder_of(choice.kind);
  auto* chooser = new QFileDialog(parent(), to_qt(choice.title), folder);
  chooser->installEventFilter(new PlainMessages(chooser));
  OpenDialog dialog(chooser);
  chooser->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  chooser->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  chooser->setNameFilters(name_filters(choice.filter));
  chooser->setDefaultSuffix(to_qt(choice.default_extension));
  // A pattern is no name for a new file: taken as it stands it would make one that is called so.
  const bool pattern = choice.initial_name.find('*') != std::string::npos;
  if (!choice.initial_name.empty() && !(save && pattern)) chooser->selectFile(to_qt(choice.initial_name));
  const int result = co_await dialog.finished();
  if (result != QDialog::Accepted) co_return std::nullopt;
  const QStringList files = chooser->selectedFiles();
  if (files.isEmpty()) co_return std::nullopt;
  if (!choice.kind.empty()) folders_[choice.kind] = QFileInfo(files.first()).absolutePath();
  co_return to_path(files.first());
}

}  // namespace qv5123
