#include "app/ui/camera_place.h"

#include <QAction>
#include <QDockWidget>
#include <QMenuBar>
#include <QScreen>

#include "app/ui/frame.h"

namespace qv5123 {
namespace {

constexpr int kCameraWidth = 340;

}  // namespace

void place_camera(CMainFrame& frame, QDockWidget& dock, bool visible) {
  frame.addDockWidget(Qt::RightDockWidgetArea, &dock);
  const QSize wider(frame.width() + kCameraWidth, frame.height());
  const bool room = wider.width() <= frame.screen()->availableGeometry().width();
  dock.setVisible(visible && room);
  if (visible && room) {
    frame.resize(wider);
    frame.keep_on_screen();
  }
  frame.resizeDocks({&dock}, {kCameraWidth}, Qt::Horizontal);
  QAction* show = dock.toggleViewAction();
  show->setText("&Camera");
  show->setStatusTip("Shows the picture of the simulated camera");
  frame.menuBar()->addAction(show);
}

}  // namespace qv5123
