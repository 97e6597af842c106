#include "app/ui/page_area.h"

#include <QAction>
#include <QEvent>
#include <QMainWindow>
#include <QScrollArea>
#include <QStyle>

#include "app/ui/page_keys.h"
#include "base/ui/folding_page.h"

namespace qv5123 {
namespace {

constexpr const char* kDot = "\u2022";

const PageEntry& entry_of(PageId id) {
  return kPageEntries[static_cast<std::size_t>(id)];
}

QKeySequence key_of(PageId id) {
  if (id == PageId::compare) return QKeySequence("Ctrl+D");
  return QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(id)));
}

/// The control that the page itself or the user last chose in it.
QWidget* chosen_control(QWidget* page) {
  QWidget* chosen = page->focusWidget();
  return chosen && chosen->isVisible() && chosen->isEnabled() ? chosen : nullptr;
}

/// The first control of a page that the tab key stops at.
QWidget* first_control(QWidget* page) {
  for (QWidget* next = page->nextInFocusChain(); next != page; next = next->nextInFocusChain()) {
    if (page->isAncestorOf(next) && next->isVisible() && next->isEnabled() &&
        next->focusPolicy() & Qt::TabFocus)
      return next;
  }
  return nullptr;
}

/// The letters that choose in the menu bar.
QString menu_letters(const QWidget* widget) {
  QString letters;
  const auto* window = qobject_cast<const QMainWindow*>(widget->window());
  if (!window) return letters;
  for (const QAction* action : window->menuWidget()->actions()) {
    const qsizetype mark = action->text().indexOf(u'&');
    if (mark >= 0 && mark + 1 < action->text().size()) letters += action->text()[mark + 1].toUpper();
  }
  return letters;
}

QScrollArea* scrolled(QWidget* page) {
  auto* area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(page);
  return area;
}

}  // namespace

QString plain_caption(QString caption) {
  return caption.remove(u'&').remove(QString::fromUtf8(kDot));
}

QString page_title(PageId id) {
  return plain_caption(QString::fromLatin1(entry_of(id).menu_text));
}

PageArea::PageArea(HostOfPage host_of, PageFactories factories, QWidget* parent)
    : QStackedWidget(parent), host_of_(std::move(host_of)), factories_(std::move(factories)) {
  addWidget(new QWidget);  // the area before any page is chosen
  for (const PageEntry& entry : kPageEntries) {
    auto* action = new QAction(QString::fromLatin1(entry.menu_text), this);
    action->setObjectName(QString::fromLatin1(entry.name));
    action->setStatusTip(QString::fromLatin1(entry.status_text));
    action->setEnabled(available(entry.id));
    action->setShortcut(key_of(entry.id));
    connect(action, &QAction::triggered, this, [this, id = entry.id] { choose(id); });
    actions_ << action;
  }
}

Page* PageArea::page(PageId id) const {
  const auto found = slots_.find(id);
  return found == slots_.end() ? nullptr : found->second.page;
}

QWidget* PageArea::page_widget(PageId id) const {
  const auto found = slots_.find(id);
  return found == slots_.end() ? nullptr : found->second.widget;
}

void PageArea::choose(PageId id) {
  if (!available(id)) return;
  update_actions(id);
  current_ = id;
  const bool exists = slots_.count(id) > 0;
  if (exists) show_slot(slots_[id]);
  if (id == PageId::make_flash || id == PageId::font_editor) emit says(QString());
  emit says(QString::fromLatin1(entry_of(id).status_text));
  if (exists) {
    slots_[id].page->chosen_again();
  } else {
    create(id);
  }
  emit chosen(id);
  emit room_changed();
}

int PageArea::needed_width() const {
  const QWidget* page = current_ ? page_widget(*current_) : nullptr;
  if (!page) return 0;
  const auto* folding = dynamic_cast<const FoldingPage*>(page);
  // What is beside the pages gives way before a page folds.
  const QSize needs =
      folding ? folding->usual_size() : page->minimumSizeHint().expandedTo(page->minimumSize());
  const int bar = needs.height() > height() ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
  return needs.width() + bar;
}

void PageArea::mark(PageId id, bool marked) {
  QAction* action = this->action(id);
  const QString text = QString::fromLatin1(entry_of(id).menu_text) + (marked ? kDot : "");
  if (action->text() != text) action->setText(text);
}

bool PageArea::eventFilter(QObject* watched, QEvent* event) {
  // Its item chooses it again. Sent to what is hidden by itself, not with the area around it.
  if (event->type() == QEvent::HideToParent && current_ && watched == page_widget(*current_)) {
    update_actions(std::nullopt);
    emit closed();
  }
  const bool laid_out = event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize;
  if (laid_out && current_ && watched == page_widget(*current_)) emit room_changed();
  return QStackedWidget::eventFilter(watched, event);
}

void PageArea::update_actions(std::optional<PageId> chosen) {
  for (const PageEntry& entry : kPageEntries) {
    actions_[static_cast<qsizetype>(entry.id)]->setEnabled(available(entry.id) && entry.id != chosen);
  }
}

void PageArea::create(PageId id) {
  CreatedPage created = factories_[id](host_of_(entry_of(id)));
  if (created.desk) emit made(*created.desk);
  if (created.registers) emit made_registers(*created.registers);
  Slot& slot = slots_[id];
  slot.widget = created.widget.release();
  slot.page = created.page;
  slot.frame = scrolled(slot.widget);
  let_return_set(*slot.widget);
  give_mnemonics(*slot.widget, menu_letters(this));
  addWidget(slot.frame);
  show_slot(slot);
  slot.widget->installEventFilter(this);
}

void PageArea::show_slot(const Slot& slot) {
  setCurrentWidget(slot.frame);
  slot.widget->show();  // a page may have hidden itself
  // The keyboard starts where the eye does, on the left; from the page's end it goes on to the column.
  QWidget* control = chosen_control(slot.widget);
  if (!control) control = first_control(slot.widget);
  if (control) control->setFocus(Qt::OtherFocusReason);
}

}  // namespace qv5123
