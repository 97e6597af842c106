#include "content/ui/dlg_make_eeprom.h"

#include <QDragEnterEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "console/slow_write.h"
#include "content/ui/flash_map_view.h"

namespace qv5123 {

namespace {

/// A path that is being typed is not looked for at every letter.
constexpr std::chrono::milliseconds kTyped{300};

FileChoice binary_choice(const char* title, const char* kind) {
  return {"Binary File(*.bin)|*.bin", "bin", ".bin", title, kind};
}

/// The path as it was meant: file managers and shells put quotes around the ones that they copy.
QString meant_path(const QString& text) {
  QString path = text.trimmed();
  const bool quoted =
      path.size() > 1 && path.front() == path.back() && (path.front() == u'"' || path.front() == u'\'');
  return quoted ? path.mid(1, path.size() - 2).trimmed() : path;
}

Message information(std::string text) {
  Message message;
  message.text = std::move(text);
  return message;
}

}  // namespace

CDlgMakeEeprom::CDlgMakeEeprom(PageHost& host, QWidget* parent) : QWidget(parent), host_(host) {
  auto* layout = new QVBoxLayout(this);
  auto* paths = new QGridLayout;
  layout->addLayout(paths);
  firmware_ =
      add_path_row(paths, "f&w file", binary_choice("Choose the firmware for the flash image", "firmware"));
  font_ = add_path_row(paths, "&font file", binary_choice("Choose the font for the flash image", "font"));
  user_ = add_path_row(
      paths, "&user file",
      {"DAT file(*.dat)|*.dat", "dat", ".dat", "Choose the user data for the flash image", "dat"});

  auto* make =
      push_button("Make Serial Flash FILE", "Build the 256 KiB flash image from the three files and save it");
  connect(make, &QPushButton::clicked, this, [this] { flows_.spawn(make_image()); });
  layout->addWidget(make, 0, Qt::AlignLeft);
  map_ = new FlashMapView;
  layout->addWidget(map_, 1);
  setAcceptDrops(true);
  for (QLineEdit* edit : {firmware_, font_, user_})
    connect(edit, &QLineEdit::textChanged, this, &CDlgMakeEeprom::look_again);
}

QLineEdit* CDlgMakeEeprom::add_path_row(QGridLayout* layout, const QString& caption,
                                        const FileChoice& choice) {
  const QString label = QString(caption).remove(u'&');
  auto* edit = keep_choice(new QLineEdit);
  edit->setAccessibleName(label);
  edit->setToolTip("Path of the " + label + "; files can be dropped on the page");
  // By itself it would take the file as an address among its text.
  edit->setAcceptDrops(false);
  auto* shown = new QLabel(caption);
  shown->setBuddy(edit);
  auto* button = new QPushButton("...");
  button->setAccessibleName("Choose " + label);
  button->setToolTip("Choose the " + label);
  connect(button, &QPushButton::clicked, this,
          [this, edit, choice] { flows_.spawn(choose_path(edit, choice)); });

  const int row = layout->rowCount();
  layout->addWidget(shown, row, 0);
  layout->addWidget(edit, row, 1);
  layout->addWidget(button, row, 2);
  return edit;
}

Task<> CDlgMakeEeprom::choose_path(QLineEdit* edit, FileChoice choice) {
  const auto path = co_await host_.prompts().choose_open(std::move(choice));
  if (path) edit->setText(path_to_qt(*path));
}

Task<> CDlgMakeEeprom::make_image() {
  FlashFiles files = this->files();
  if (files.firmware.empty() || files.font.empty() || files.user.empty()) {
    co_await host_.prompts().message(warning("Error!!  Any File is not assigned.."));
    co_return;
  }
  std::function<FlashBuild()> work = [files = std::move(files)] { return build_flash_image(files); };
  auto build = co_await host_.background().run<FlashBuild>(std::move(work));
  if (build.ok()) {
    for (const std::string& remark : build.remarks) host_.append_console("\r\n" + remark);
    if (!build.remarks.empty()) host_.show_failure(joined(build.remarks, "; "));
    co_await save_image(std::move(build));
  } else {
    co_await host_.prompts().message(warning(build.refusal));
  }
}

FlashFiles CDlgMakeEeprom::files() const {
  const auto path = [](const QLineEdit* edit) { return to_path(meant_path(edit->text())); };
  return {path(firmware_), path(font_), path(user_)};
}

void CDlgMakeEeprom::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  look_again();
}

void CDlgMakeEeprom::look_again() {
  looking_.start(look());
}

Task<> CDlgMakeEeprom::look() {
  co_await Delay(host_.scheduler(), kTyped);
  std::function<FlashLook()> work = [files = files()] { return look_at_flash(files); };
  map_->show_look(co_await host_.background().run<FlashLook>(std::move(work)));
}

void CDlgMakeEeprom::dragEnterEvent(QDragEnterEvent* event) {
  for (const QUrl& url : event->mimeData()->urls())
    if (url.isLocalFile()) return event->acceptProposedAction();
}

QLineEdit* CDlgMakeEeprom::edit_for(const std::filesystem::path& dropped) const {
  switch (flash_file_kind(dropped)) {
    case FlashFile::firmware:
      return firmware_;
    case FlashFile::font:
      return font_;
    default:
      return user_;
  }
}

void CDlgMakeEeprom::dropEvent(QDropEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  auto* under = qobject_cast<QLineEdit*>(childAt(event->position().toPoint()));
  for (const QUrl& url : urls) {
    if (!url.isLocalFile()) continue;
    const QString path = url.toLocalFile();
    QLineEdit* edit = urls.size() == 1 && under ? under : edit_for(to_path(path));
    edit->setText(path);
  }
  event->acceptProposedAction();
}

// "Ok.." follows whatever came of the output, a cancelled chooser included: the pairing is kept deliberately.
Task<> CDlgMakeEeprom::save_image(FlashBuild build) {
  FileChoice choice{"Binary(*.bin)|*.bin", "bin", ".bin", "Save the flash image", "flash image"};
  const auto path = co_await host_.prompts().choose_save(std::move(choice));
  if (path) {
    std::function<FileResult()> work = [path = *path, image = std::move(build.image)] {
      return write_file_atomically(path, image);
    };
    const FileResult written = co_await write_in_background(host_, *path, std::move(work));
    const std::string but = build.remarks.empty() ? "" : ", but " + joined(build.remarks, "; ");
    if (!written.ok())
      host_.show_failure(written.text);
    else if (but.empty())
      host_.show_status("Flash image written: " + path_text(*path));
    else
      host_.show_failure("Flash image written: " + path_text(*path) + but);
  } else {
    host_.show_failure("No flash image was written");
    co_await host_.prompts().message(warning("Flash file generation error"));
  }
  co_await host_.prompts().message(information("Ok.. QV512x Flash data.bin"));
}

}  // namespace qv5123
