#pragma once

class QDockWidget;

namespace qv5123 {

class CMainFrame;

/// Gives the dock with the simulated camera's picture its place, and the menu item that shows and hides it.
/// It stands beside the pages, never over them; a window that cannot become wider for it opens without it.
/// Where the window's docks were restored before, it comes back as it was then. The frame owns the dock.
void place_camera(CMainFrame& frame, QDockWidget& dock, bool visible);

}  // namespace qv5123
