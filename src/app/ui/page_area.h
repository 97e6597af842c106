#pragma once

#include <QStackedWidget>
#include <functional>
#include <map>

#include "app/ui/pages.h"

class QAction;

namespace qv5123 {

/// An action's text as it is read: without its mnemonic and without the dot behind a page's item.
QString plain_caption(QString caption);
/// The page's name as the menu bar has it.
QString page_title(PageId id);

/// The left area, in which exactly one page at a time is shown, and the menu items that choose it. Pages are
/// made on first use and live until exit.
class PageArea final : public QStackedWidget {
  Q_OBJECT

 public:
  /// What a page is made for; must outlive the pages.
  using HostOfPage = std::function<PageHost&(const PageEntry&)>;
  PageArea(HostOfPage host_of, PageFactories factories, QWidget* parent = nullptr);

  /// The menu bar's items in their order.
  QList<QAction*> actions_in_order() const { return actions_.first(kBarPages); }
  /// What chooses a page.
  QAction* action(PageId id) const { return actions_[static_cast<qsizetype>(id)]; }
  /// Shows `id`, as if chosen from the menu. Nothing for a page that has no factory.
  void choose(PageId id);
  /// A dot behind the page's item: something there was not sent or not saved.
  void mark(PageId id, bool marked);
  bool available(PageId id) const { return factories_.count(id) > 0; }
  /// The page, or null until it is first chosen.
  Page* page(PageId id) const;
  QWidget* page_widget(PageId id) const;
  std::optional<PageId> current() const { return current_; }
  /// The width in which the page that is shown need not be scrolled sideways.
  int needed_width() const;

 signals:
  void chosen(qv5123::PageId id);
  /// The page that was shown has hidden itself.
  void closed();
  /// A tuning page has come into being.
  void made(qv5123::TuningDesk& desk);
  /// The Registers page has.
  void made_registers(qv5123::RegisterDesk& desk);
  /// The text of the page that is being chosen.
  void says(const QString& text);
  /// needed_width() may be another.
  void room_changed();

 protected:
  /// Watches the pages for one that hides itself or needs another width.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Slot {
    QWidget* frame = nullptr;  // scrolls the page where the window is too small for it
    QWidget* widget = nullptr;
    Page* page = nullptr;
  };
  void update_actions(std::optional<PageId> chosen);
  void create(PageId id);
  void show_slot(const Slot& slot);

  HostOfPage host_of_;
  PageFactories factories_;
  QList<QAction*> actions_;
  std::map<PageId, Slot> slots_;
  std::optional<PageId> current_;
};

}  // namespace qv5123
