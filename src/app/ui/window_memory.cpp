#include "app/ui/window_memory.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDockWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QSpinBox>
#include <QSplitter>
#include <utility>

#include "app/ui/column_drawer.h"
#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/kept_text.h"
#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

QString page_name(PageId id) {
  return QLatin1String(kPageEntries[static_cast<std::size_t>(id)].name);
}

QList<QWidget*> kept_controls(const QWidget& page) {
  QList<QWidget*> kept = page.findChildren<QWidget*>();
  kept.removeIf([](const QWidget* widget) { return !widget->property(kKeptChoice).toBool(); });
  return kept;
}

QVariant state_of(const QWidget* widget) {
  if (const auto* text = dynamic_cast<const KeptText*>(widget)) return text->kept_text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) return button->isChecked();
  if (const auto* list = qobject_cast<const QComboBox*>(widget)) return list->currentText();
  if (const auto* number = qobject_cast<const QSpinBox*>(widget)) return number->value();
  if (const auto* edit = qobject_cast<const QLineEdit*>(widget)) return edit->text();
  if (const auto* header = qobject_cast<const QHeaderView*>(widget)) return header->saveState();
  if (const auto* splitter = qobject_cast<const QSplitter*>(widget)) return splitter->saveState();
  return {};
}

void restore_header(QHeaderView* header, const QByteArray& state) {
  header->restoreState(state);
  // It may be that of a table which had more columns then.
  if (header->model() && header->count() != header->model()->columnCount()) header->reset();
}

void restore_state(QWidget* widget, const QVariant& state) {
  if (auto* text = dynamic_cast<KeptText*>(widget)) return text->take_kept(state.toString());
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) return button->setChecked(state.toBool());
  if (auto* list = qobject_cast<QComboBox*>(widget)) {
    const int index = list->findText(state.toString());
    if (index >= 0) list->setCurrentIndex(index);
  }
  if (auto* number = qobject_cast<QSpinBox*>(widget)) return number->setValue(state.toInt());
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit->setText(state.toString());
  if (auto* header = qobject_cast<QHeaderView*>(widget)) restore_header(header, state.toByteArray());
  if (auto* splitter = qobject_cast<QSplitter*>(widget)) splitter->restoreState(state.toByteArray());
}

/// One that floated before it no longer could would have no way back.
void put_back_docks(const CMainFrame& frame) {
  for (auto* dock : frame.findChildren<QDockWidget*>())
    if (!dock->features().testFlag(QDockWidget::DockWidgetFloatable)) dock->setFloating(false);
}

}  // namespace

WindowMemory::WindowMemory(CMainFrame& frame, CQV5123View& view, WindowLook look)
    : frame_(frame), view_(view), kept_(std::move(look)) {
  connect(&view_.pages(), &PageArea::chosen, this, &WindowMemory::restore_choices);
}

void WindowMemory::restore() {
  if (!kept_.geometry.isEmpty() && frame_.restoreGeometry(kept_.geometry)) frame_.keep_on_screen();
  if (!kept_.docks.isEmpty()) frame_.restoreState(kept_.docks);
  put_back_docks(frame_);
  view_.column().restore(kept_.column);
}

WindowLook WindowMemory::look() const {
  WindowLook look = kept_;
  look.geometry = frame_.saveGeometry();
  look.docks = frame_.saveState();
  look.column = view_.column().chosen();
  if (const auto page = view_.pages().current()) look.page = page_name(*page);
  for (const PageEntry& entry : kPageEntries) {
    const QWidget* page = view_.pages().page_widget(entry.id);
    if (!page) continue;
    for (const QWidget* control : kept_controls(*page))
      look.choices[page_name(entry.id) + u'/' + control->accessibleName()] = state_of(control);
  }
  return look;
}

std::optional<PageId> WindowMemory::last_page() const {
  for (const PageEntry& entry : kPageEntries)
    if (kept_.page == QLatin1String(entry.name)) return entry.id;
  return std::nullopt;
}

void WindowMemory::restore_choices(PageId id) {
  if (restored_.contains(static_cast<int>(id))) return;
  restored_.insert(static_cast<int>(id));
  for (QWidget* control : kept_controls(*view_.pages().page_widget(id))) {
    const auto found = kept_.choices.constFind(page_name(id) + u'/' + control->accessibleName());
    if (found != kept_.choices.constEnd()) restore_state(control, *found);
  }
}

}  // namespace qv5123
