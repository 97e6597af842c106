#pragma once

#include <QApplication>
#include <QTest>
#include <filesystem>

#include "app/ui/frame.h"
#include "app/ui/main_pages.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "support/fake_prompts.h"
#include "support/fake_wire.h"
#include "support/inline_background.h"
#include "support/page_driver.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

/// The main window with all its pages over a fake wire, in a folder with the sample description.
struct WindowBench {
  CurrentFolder folder;
  FakeWire wire;
  FakePrompts user;
  InlineBackground work;
  CQV5123Doc document;
  CQV5123View* view = nullptr;
  std::unique_ptr<CMainFrame> frame;

  explicit WindowBench(QSize size = {1280, 770}) {
    std::filesystem::copy_file(source_folder() / "resources" / "regu.xml", folder.path() / "regu.xml");
    view = new CQV5123View(wire.link, user, work, document, all_pages());
    frame = std::make_unique<CMainFrame>(view);
    frame->show();
    // Larger than the screen, if need be.
    frame->resize(size);
    QApplication::setActiveWindow(frame.get());
    QCoreApplication::processEvents();
  }

  QWidget& choose(PageId id) {
    view->pages().choose(id);
    // Once for the page, once for the column that gives way to it.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    return *view->pages().page_widget(id);
  }
};

}  // namespace qv5123::test
