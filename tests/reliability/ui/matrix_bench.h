#pragma once

#include <gtest/gtest.h>

#include <QtWidgets>
#include <fstream>

#include "app/ui/console_view.h"
#include "app/ui/control_column.h"
#include "app/ui/frame.h"
#include "app/ui/main_pages.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "registers/answering_chip.h"
#include "simulator/camera.h"
#include "support/fake_prompts.h"
#include "support/faulty_line.h"
#include "support/inline_background.h"
#include "support/page_driver.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

/// The whole window with its real pages, on a line that fails, used as a user uses it.
struct MatrixBench {
  CurrentFolder folder;
  FakeWire wire;
  FakePrompts user;
  InlineBackground work;
  CQV5123Doc document;
  FaultyLine line{wire};
  CQV5123View* view = nullptr;  ///< the frame's
  std::unique_ptr<CMainFrame> frame;
  std::vector<std::string> statuses;

  MatrixBench() {
    folder.write("regu.xml",
                 {reinterpret_cast<const char*>(kSampleDescription.data()), 2 * kSampleDescription.size()});
    view = new CQV5123View(wire.link, user, work, document, all_pages());
    frame = std::make_unique<CMainFrame>(view);
    document.setting_file = folder / "board.dat";
    line.on_text = [this](const std::string& text) { view->take_received(text); };
    QObject::connect(view, &CQV5123View::status_changed, frame.get(),
                     [this](const QString& text) { statuses.push_back(text.toStdString()); });
    // A download that broke off is ended before the next command, and a page saved that nobody has read.
    user.on_prompt = [this, seen = std::size_t{0}]() mutable {
      if (std::exchange(seen, user.questions.size()) == user.questions.size()) return;
      const std::string& text = user.questions.back().text;
      if (text.find("still expects") == std::string::npos &&
          text.find("Go on all the same?") == std::string::npos)
        return;
      user.answers.push_front(Answer::yes);
    };
    frame->show();
  }

  void open(PageId id) {
    view->pages().choose(id);
    id_ = id;
    wire.advance(3000);
  }
  Page& page() { return *view->pages().page(id_); }
  QWidget& widget() { return *view->pages().page_widget(id_); }

  template <class Widget = QAbstractButton>
  Widget* control(const char* name) {
    return find<Widget>(widget(), name);
  }
  void click(const char* name) { control(name)->click(); }
  void click_in_column(const char* name) {
    find<QAbstractButton>(*frame->findChild<ControlColumn*>(), name)->click();
  }

  /// Whether this was, or was part of, what the status bar said.
  bool said(const std::string& text) const {
    return std::any_of(statuses.begin(), statuses.end(),
                       [&](const std::string& status) { return status.find(text) != status.npos; });
  }
  bool console_has(std::string_view text) const {
    return view->console_text().text().find(text) != std::string_view::npos;
  }

  /// What the list of the Registers page shows in its last column; -1 for none.
  int register_value(int row) {
    const QAbstractItemModel& list = *control<QTableView>("Registers")->model();
    bool read = false;
    const QString text = list.index(row, list.columnCount() - 1).data().toString();
    const int value = text.toInt(&read, 16);
    return read ? value : -1;
  }

  /// Everything that the page shows.
  std::string shown() {
    std::string all;
    for (const QWidget* child : widget().findChildren<QWidget*>()) {
      if (child->objectName() == "unread") continue;  // where the values are from is none of them
      for (const char* property : {"text", "value", "currentIndex", "checked"}) {
        // The mark beside an edit, which comes and goes, has none of them.
        if (const QVariant shown = child->property(property); shown.isValid())
          all += shown.toString().toStdString() + '|';
      }
    }
    return all;
  }

  /// What the page shows, and what it would store.
  std::string snapshot() {
    std::string all = shown();
    const UserDataImage before = document.user_data;
    page().save_to_user_data();
    const auto bytes = document.user_data.bytes();
    all.append(bytes.begin(), bytes.end());
    document.user_data = before;
    return all;
  }

  /// Gives the page values that the chip does not have; but for the front gamma curve, which no page sends.
  void spoil_page(unsigned seed) {
    std::array<std::uint8_t, UserDataImage::kSize> bytes{};
    std::mt19937 random(seed);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() % 100);
    const auto& front = line.chip().state().user_data.bytes();
    std::copy_n(front.begin(), 44, bytes.begin());
    document.user_data.assign(bytes);
    document.user_data.mark_loaded();
    page().reload_from_user_data();
  }

  /// Lets time pass until `over`; false when that takes longer than `most`.
  bool wait_until(const std::function<bool()>& over, std::chrono::seconds most) {
    for (std::chrono::milliseconds waited{0}; waited < most; waited += kStep) {
      if (over()) return true;
      wire.scheduler.advance(kStep);
      QCoreApplication::processEvents();
    }
    return over();
  }

 private:
  static constexpr std::chrono::milliseconds kStep{100};

  PageId id_ = PageId::registers;
};

}  // namespace qv5123::test
