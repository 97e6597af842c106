#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <map>
#include <memory>

#include "app/ui/console_view.h"
#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "support/fake_prompts.h"
#include "support/fake_wire.h"
#include "support/inline_background.h"
#include "support/page_driver.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

/// A page that records what the main form does with it.
class RecordingPage : public QWidget, public Page {
 public:
  RecordingPage(std::string name, std::vector<std::string>& record, const Traffic& last_words)
      : name_(std::move(name)), record_(record), last_words_(last_words) {
    record_.push_back(name_ + " made");
  }
  void save_to_user_data() override { record_.push_back(name_ + " saved"); }
  void reload_from_user_data() override { record_.push_back(name_ + " reloaded"); }
  Traffic leave() override { return last_words_; }
  void chosen_again() override { record_.push_back(name_ + " again"); }

 private:
  const std::string name_;
  std::vector<std::string>& record_;
  const Traffic& last_words_;
};

/// The main window over a fake wire, driven as a user drives it.
struct ViewBench {
  FakeWire wire;
  FakePrompts user;
  InlineBackground work;
  CQV5123Doc document;
  TemporaryFolder folder;
  std::vector<std::string> record;
  Traffic last_words;                      ///< of every page
  std::map<std::string, PageHost*> hosts;  ///< of the pages that were made
  CQV5123View* view = new CQV5123View(wire.link, user, work, document, factories());
  CMainFrame frame{view};
  PageDriver driver{frame};
  std::vector<std::string> statuses;

  ViewBench() {
    QObject::connect(view, &CQV5123View::status_changed, &frame,
                     [this](const QString& text) { statuses.push_back(text.toStdString()); });
    frame.show();
  }

  /// Every page but the LSC page.
  PageFactories factories() {
    PageFactories pages;
    for (const PageEntry& entry : kPageEntries) {
      if (entry.id == PageId::lsc) continue;
      pages[entry.id] = [this, name = std::string(entry.name)](PageHost& host) {
        hosts[name] = &host;
        auto page = std::make_unique<RecordingPage>(name, record, last_words);
        Page* side = page.get();
        return CreatedPage{std::move(page), side};
      };
    }
    return pages;
  }

  void click(const char* name) { driver.click(name); }
  /// The user picks an entry of a list.
  void pick(const char* name, int index) {
    auto* list = driver.find<QComboBox>(name);
    list->setCurrentIndex(index);
    emit list->activated(index);
    QCoreApplication::processEvents();
  }
  /// Clicks and returns what reached the wire by it, one string per write.
  std::vector<std::string> sent_by(const char* name) {
    wire.sender.writes.clear();
    click(name);
    wire.advance(1000);
    return wire.sender.writes;
  }
  std::string console() {
    while (!view->console().settled()) QCoreApplication::processEvents();
    return view->console().toPlainText().toStdString();
  }
  QAction* item(PageId id) { return view->pages().actions_in_order()[static_cast<int>(id)]; }
};

}  // namespace qv5123::test
