#pragma once

#include <QObject>
#include <QSet>

#include "app/ui/app_settings.h"
#include "app/ui/pages.h"

namespace qv5123 {

class CMainFrame;
class CQV5123View;

/// Gives the window the look that it had, and tells the one that it has: place, docks, column, page, and what
/// the pages mark with keep_choice().
class WindowMemory final : public QObject {
 public:
  /// All of them outlive this.
  WindowMemory(CMainFrame& frame, CQV5123View& view, WindowLook look);

  /// To be called once the docks are there. What does not suit the screens any more is as at the first start.
  void restore();
  WindowLook look() const;
  /// The page that was shown last.
  std::optional<PageId> last_page() const;

 private:
  void restore_choices(PageId id);

  CMainFrame& frame_;
  CQV5123View& view_;
  WindowLook kept_;
  QSet<int> restored_;  // pages
};

}  // namespace qv5123
