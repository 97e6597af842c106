#include "content/ui/dlg_make_eeprom.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "base/atomic_file.h"
#include "base/ui/qt_text.h"
#include "content/flash_image.h"

namespace qv5123 {

namespace {

FileChoice binary_choice() {
  return {"Binary File(*.bin)|*.bin", "bin", ".bin"};
}

Message warning(std::string text) {
  Message message;
  message.text = std::move(text);
  message.icon = Message::Icon::warning;
  return message;
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
  firmware_ = add_path_row(paths, "fw file", binary_choice());
  font_ = add_path_row(paths, "font file", binary_choice());
  user_ = add_path_row(paths, "user file", {"DAT file(*.dat)|*.dat", "dat", ".dat"});

  auto* make = new QPushButton("Make Serial Flash FILE");
  make->setAccessibleName(make->text());
  make->setToolTip("Build the 256 KiB flash image from the three files and save it");
  connect(make, &QPushButton::clicked, this, [this] { flows_.spawn(make_image()); });
  layout->addWidget(make, 0, Qt::AlignLeft);
  layout->addStretch(1);
}

QLineEdit* CDlgMakeEeprom::add_path_row(QGridLayout* layout, const QString& label, const FileChoice& choice) {
  auto* edit = new QLineEdit;
  edit->setAccessibleName(label);
  edit->setToolTip("Path of the " + label);
  auto* caption = new QLabel(label);
  caption->setBuddy(edit);
  auto* button = new QPushButton("...");
  button->setAccessibleName("Choose " + label);
  button->setToolTip("Choose the " + label);
  connect(button, &QPushButton::clicked, this,
          [this, edit, choice] { flows_.spawn(choose_path(edit, choice)); });

  const int row = layout->rowCount();
  layout->addWidget(caption, row, 0);
  layout->addWidget(edit, row, 1);
  layout->addWidget(button, row, 2);
  return edit;
}

Task<> CDlgMakeEeprom::choose_path(QLineEdit* edit, FileChoice choice) {
  const auto path = co_await host_.prompts().choose_open(std::move(choice));
  if (path) edit->setText(QString::fromStdString(path_text(*path)));
}

Task<> CDlgMakeEeprom::make_image() {
  if (firmware_->text().isEmpty() || font_->text().isEmpty() || user_->text().isEmpty()) {
    co_await host_.prompts().message(warning("Error!!  Any File is not assigned.."));
    co_return;
  }
  FlashFiles files{to_path(firmware_->text()), to_path(font_->text()), to_path(user_->text())};
  std::function<FlashBuild()> work = [files = std::move(files)] { return build_flash_image(files); };
  auto build = co_await host_.background().run<FlashBuild>(std::move(work));
  if (build.ok()) {
    co_await save_image(std::move(build.image));
  } else {
    co_await host_.prompts().message(warning(build.refusal));
  }
}

// "Ok.." follows whatever came of the output, a cancelled chooser included: the pairing is kept deliberately.
Task<> CDlgMakeEeprom::save_image(std::string image) {
  FileChoice choice{"Binary(*.bin)|*.bin", "bin", ".bin"};
  const auto path = co_await host_.prompts().choose_save(std::move(choice));
  if (path) {
    std::function<FileResult()> work = [path = *path, image = std::move(image)] {
      return write_file_atomically(path, image);
    };
    const auto written = co_await host_.background().run<FileResult>(std::move(work));
    if (!written.ok()) host_.show_status(written.text);
  } else {
    co_await host_.prompts().message(warning("Flash file generation error"));
  }
  co_await host_.prompts().message(information("Ok.. QV512x Flash data.bin"));
}

}  // namespace qv5123
