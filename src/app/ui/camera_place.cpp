#include "app/ui/camera_place.h"

#include <QAction>
#include <QDockWidget>
#include <QMenuBar>
#include <QScreen>

#include "app/ui/frame.h"

namespace qv5123 {
namespace {

constexpr int kCameraWidth = 340;

void put_beside_pages(CMainFrame& frame, QDockWidget& dock, bool visible) {
  frame.addDockWidget(Qt::RightDockWidgetArea, &dock);
  const QSize wider(frame.width() + kCameraWidth, frame.height());
  const bool room = !frame.isMaximized() && !frame.isFullScreen() &&
                    wider.width() <= frame.screen()->availableGeometry().width();
  dock.setVisible(visible && room);
  if (visible && room) {
    frame.resize(wider);
    frame.keep_on_screen();
  }
  frame.resizeDocks({&dock}, {kCameraWidth}, Qt::Horizontal);
}

}  // namespace

void place_camera(CMainFrame& frame, QDockWidget& dock, bool visible) {
  if (frame.restoreDockWidget(&dock)) {
    dock.setFloating(false);
  } else {
    put_beside_pages(frame, dock, visible);
  }
  QAction* show = dock.toggleViewAction();
  // Later than the window, its letter may be one of a page's.
  show->setText(frame.isVisible() ? "Camera" : "&Camera");
  show->setStatusTip("Shows the picture of the simulated camera");
  frame.menuBar()->addAction(show);
}

}  // namespace qv5123
