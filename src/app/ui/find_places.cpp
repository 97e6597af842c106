#include "app/ui/find_places.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScrollArea>
#include <QSet>
#include <algorithm>

#include "app/ui/column_drawer.h"
#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/page_commands.h"
#include "app/ui/qv5123_view.h"
#include "base/hex.h"
#include "base/ui/findable.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// What can be gone to: what takes the keyboard and has a name. A "S" stands beside what it sets.
bool is_place(const QWidget* widget) {
  return !widget->accessibleName().isEmpty() && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
         !widget->property(kSetsTheEditsBeside).toBool();
}

void unfold(QWidget* root, QWidget* widget) {
  if (widget->isVisibleTo(root)) return;
  for (auto* button : root->findChildren<QAbstractButton*>())
    if (button->property(kUnfolds).toBool()) button->setChecked(true);
}

void put_keyboard(QWidget* widget) {
  for (QWidget* at = widget->parentWidget(); at; at = at->parentWidget())
    if (auto* area = qobject_cast<QScrollArea*>(at)) area->ensureWidgetVisible(widget);
  widget->setFocus(Qt::ShortcutFocusReason);
  if (auto* box = qobject_cast<QAbstractSpinBox*>(widget)) box->selectAll();
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) edit->selectAll();
}

/// How many of the last words of `caption` the name ends with, all of the name's at best.
int common_end(const QString& caption, const QString& name) {
  const QStringList wanted = caption.split(u' '), has = name.split(u' ');
  int words = 0;
  while (words < wanted.size() && words < has.size() &&
         wanted[wanted.size() - 1 - words].compare(has[has.size() - 1 - words], Qt::CaseInsensitive) == 0)
    ++words;
  return words;
}

/// The control for a value. Where a page shows one of several values in the same edit, this is the edit that
/// comes closest.
QWidget* control_of(const QWidget& page, const QString& caption) {
  QWidget* best = nullptr;
  int best_end = 0;
  for (auto* widget : page.findChildren<QWidget*>()) {
    if (!is_place(widget)) continue;
    if (widget->accessibleName() == caption) return widget;
    if (qobject_cast<QAbstractButton*>(widget)) continue;
    const int end = common_end(caption, widget->accessibleName());
    if (end > best_end) best = widget;
    best_end = std::max(best_end, end);
  }
  return best;
}

struct Value {
  PageId page;
  std::size_t field;  ///< its place in the page's list
  QString caption;
};

void go_to_value(CQV5123View& view, const Value& value) {
  view.pages().choose(value.page);
  QWidget* page = view.pages().page_widget(value.page);
  if (!page) return;
  if (auto* modes = dynamic_cast<ChoosesValues*>(page)) modes->choose_value(value.field);
  QWidget* control = control_of(*page, value.caption);
  if (!control) return;
  unfold(page, control);
  put_keyboard(control);
  if (!control->isEnabled()) view.show_status(from_qt(value.caption) + " is shown only: it cannot be typed");
}

void add_actions(const QList<QAction*>& actions, const QString& where, std::vector<FindItem>& items) {
  for (QAction* action : actions) {
    if (action->menu()) {
      add_actions(action->menu()->actions(), plain_caption(action->text()), items);
      continue;
    }
    if (action->isSeparator() || !action->isEnabled() || action->text().isEmpty()) continue;
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    items.push_back({plain_caption(action->text()), keys.isEmpty() ? where : where + ", " + keys,
                     [action = QPointer(action)] {
                       if (action) action->trigger();
                     }});
  }
}

void add_values(CQV5123View& view, std::vector<FindItem>& items) {
  const ValueStates& values = view.values();
  for (std::size_t page = 0; page < values.pages(); ++page) {
    const PageId id = tuning_page_id(values.page_name(page));
    if (!view.pages().available(id)) continue;
    for (std::size_t at = 0; at < values.fields(page).size(); ++at) {
      const FieldInfo& field = values.fields(page)[at];
      const QString caption = to_qt(field.caption.caption());
      QString where = page_title(id) + ", " + to_qt(values.full_name(page, at));
      if (field.address != Field::kNowhere)
        where += ", register 0x" + to_qt(upper_hex(static_cast<unsigned>(field.address)));
      items.push_back(
          {caption, where, [&view, value = Value{id, at, caption}] { go_to_value(view, value); }});
    }
  }
}

/// The controls of an opened page that stand for none of the values.
void add_controls(CQV5123View& view, PageId id, std::vector<FindItem>& items) {
  QWidget* page = view.pages().page_widget(id);
  if (!page) return;
  QSet<QString> listed;
  for (const FindItem& item : items)
    if (item.where.startsWith(page_title(id) + ",")) listed.insert(item.name);
  for (QWidget* widget : page->findChildren<QWidget*>()) {
    if (!is_place(widget) || listed.contains(widget->accessibleName())) continue;
    // The page may be closed while the list is open.
    items.push_back({widget->accessibleName(), page_title(id),
                     [&view, id, page = QPointer(page), widget = QPointer(widget)] {
                       view.pages().choose(id);
                       if (!page || !widget) return;
                       unfold(page, widget);
                       put_keyboard(widget);
                     }});
  }
}

void go_to_command(CQV5123View& view, PageId id, const QString& name) {
  view.pages().choose(id);
  QWidget* page = view.pages().page_widget(id);
  if (!page) return;
  for (auto* button : page->findChildren<QAbstractButton*>()) {
    if (button->accessibleName() != name || !is_place(button)) continue;
    unfold(page, button);
    return put_keyboard(button);
  }
}

/// Those of a page that nobody has opened.
void add_commands(CQV5123View& view, const PageCommands& page, std::vector<FindItem>& items) {
  if (!view.pages().available(page.page) || view.pages().page_widget(page.page)) return;
  for (const QString& name : QString(page.names).split(u'|'))
    items.push_back(
        {name, page_title(page.page), [&view, id = page.page, name] { go_to_command(view, id, name); }});
}

void add_column(CQV5123View& view, std::vector<FindItem>& items) {
  ColumnDrawer& drawer = view.column();
  for (QWidget* widget : drawer.findChildren<QWidget*>()) {
    if (!is_place(widget)) continue;
    items.push_back({widget->accessibleName(), "Column", [&drawer, widget = QPointer(widget)] {
                       if (!widget) return;
                       if (!widget->isVisible()) drawer.restore(static_cast<int>(ColumnShape::whole));
                       put_keyboard(widget);
                     }});
  }
}

void add_findable(CQV5123View& view, PageId id, std::vector<FindItem>& items) {
  const QPointer page = view.pages().page_widget(id);
  const auto* findable = dynamic_cast<Findable*>(page.data());
  if (!findable) return;
  for (FoundPlace& place : findable->places())
    items.push_back(
        {std::move(place.name), page_title(id) + ", " + place.where, [&view, id, page, number = place.id] {
           view.pages().choose(id);
           if (auto* shown = dynamic_cast<Findable*>(page.data())) shown->go_to(number);
         }});
}

}  // namespace

std::vector<FindItem> places_in(CMainFrame& frame, CQV5123View& view) {
  std::vector<FindItem> items;
  add_actions(frame.menuBar()->actions(), "Menu", items);
  add_values(view, items);
  for (const PageEntry& entry : kPageEntries) add_controls(view, entry.id, items);
  for (const PageCommands& page : kPageCommands) add_commands(view, page, items);
  add_column(view, items);
  for (const PageEntry& entry : kPageEntries) add_findable(view, entry.id, items);
  return items;
}

std::vector<FindItem> registers_in(CQV5123View& view) {
  if (!view.pages().page_widget(PageId::registers)) view.pages().choose(PageId::registers);
  std::vector<FindItem> items;
  add_findable(view, PageId::registers, items);
  return items;
}

}  // namespace qv5123
