// What files, ports and the chip say is shown as it stands, wherever it is shown.
#include <gtest/gtest.h>

#include "console/ui/qt_prompts.h"
#include "reliability/ui/real_program.h"

namespace qv5123 {
namespace {

const std::string kMarkup = "<b>x</b><img src=http:a.png>%s%n";

/// How a tool tip shows `tip`.
QString as_shown(const QString& tip) {
  if (!Qt::mightBeRichText(tip)) return tip;
  QTextDocument document;
  document.setHtml(tip);
  return document.toPlainText();
}

/// How often the markup is to be seen; everything in which it is must show it in full.
int shown_in(const QWidget& window) {
  const QString markup = QString::fromStdString(kMarkup);
  int found = 0;
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (!label->text().contains(markup)) continue;
    ++found;
    EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->accessibleName().toStdString();
  }
  const auto look_at_tip = [&](const QString& tip) {
    EXPECT_FALSE(Qt::mightBeRichText(tip) && tip.contains("<b>")) << tip.toStdString();
    found += as_shown(tip).contains(markup);
  };
  for (const QWidget* widget : window.findChildren<QWidget*>()) look_at_tip(widget->toolTip());
  for (const QMenu* menu : window.findChildren<QMenu*>())
    for (const QAction* action : menu->actions()) look_at_tip(action->toolTip());
  for (const QTableView* list : window.findChildren<QTableView*>()) {
    const QAbstractItemModel* model = list->model();
    for (int cell = 0; cell < model->rowCount() * model->columnCount(); ++cell) {
      const QModelIndex at = model->index(cell / model->columnCount(), cell % model->columnCount());
      look_at_tip(at.data(Qt::ToolTipRole).toString());
    }
  }
  return found;
}

TEST(PlainText, IsAllThatFilesPortsAndTheChipCanShow) {
  test::MatrixBench bench;
  std::string description = "<isp chip=\"QV5123\">\n<category catname=\"" + kMarkup + "\">\n<reg regname=\"" +
                            kMarkup + "\" addr=\"0xF800\" write=\"W\" reset=\"0x00\">\n</reg>\n</category>\n";
  std::ofstream file("regu.xml", std::ios::binary | std::ios::trunc);
  for (const char c : description) file.put(c).put('\0');
  file.close();
  bench.open(PageId::registers);
  EXPECT_EQ(shown_in(*bench.frame), 1) << "the register's name";

  PortSettings port;
  port.description = kMarkup;
  PortInUse::Surroundings surroundings;
  surroundings.open = [](std::string, LineSettings) -> Task<OpenResult> { co_return OpenResult{}; };
  bench.view->use_port(port, std::move(surroundings));
  const Flow opening([](PortInUse& port) -> Task<> { co_await port.open(); }(*bench.view->port()));
  bench.view->set_recent_files(RecentFiles({kMarkup + ".dat"}));
  bench.view->show_status("Cannot read " + kMarkup);
  EXPECT_EQ(shown_in(*bench.frame), 5) << "the port's tip, the recent file's, the status and its tip";

  bench.view->take_received(kMarkup + "\n");
  while (!bench.view->console().settled()) QCoreApplication::processEvents();
  EXPECT_TRUE(bench.view->console().toPlainText().contains(QString::fromStdString(kMarkup)));

  QtPrompts prompts;
  prompts.set_parent(bench.frame.get());
  Message message;
  message.text = "Cannot read " + kMarkup + ".dat";
  const Flow flow(prompts.message(std::move(message)));
  EXPECT_EQ(shown_in(*bench.frame), 6) << "the message box";
}

TEST(PlainText, IsWhatTheFileChooserAsksBeforeItReplacesAFile) {
  const test::CurrentFolder folder;
  const std::string name = "<b>x<img src=a.png>.dat";
  std::ofstream(folder / name) << "1";
  QtPrompts prompts;
  FileChoice choice{kSettingFileFilter, kSettingFileExtension, name};
  const Flow flow([](QtPrompts& prompts, FileChoice choice) -> Task<> {
    co_await prompts.choose_save(std::move(choice));
  }(prompts, std::move(choice)));
  auto* chooser = test::visible<QFileDialog>();
  ASSERT_NE(chooser, nullptr);
  bool asked = false;
  QTimer::singleShot(0, chooser, [&] {
    auto* box = chooser->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    asked = box->text().contains(QString::fromStdString(name));
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    box->reject();
  });
  static_cast<QDialog*>(chooser)->accept();
  EXPECT_TRUE(asked);
}

}  // namespace
}  // namespace qv5123
