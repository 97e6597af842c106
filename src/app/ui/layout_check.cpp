#include "app/ui/layout_check.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionGroupBox>
#include <algorithm>

#include "app/ui/status_pane.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// Edits show what somebody typed, which may be any length; what is shorter has to fit.
constexpr qsizetype kShortText = 8;
/// A line edit keeps this much free on each side of its text.
constexpr int kEditMargin = 2;

template <class Kind>
const Kind* as(const QWidget& widget) {
  return qobject_cast<const Kind*>(&widget);
}

/// What other controls are made of, which lays itself out.
bool is_inner_part(const QWidget& widget) {
  const QWidget* parent = widget.parentWidget();
  if (!parent || widget.objectName().startsWith("qt_")) return true;
  return as<QAbstractSpinBox>(*parent) || as<QComboBox>(*parent) || as<QHeaderView>(*parent) ||
         as<QAbstractScrollArea>(*parent) || as<StatusPane>(*parent) || as<QMenuBar>(*parent);
}

QString name_of(const QWidget& widget) {
  QString text = widget.accessibleName();
  if (const auto* label = as<QLabel>(widget); label && text.isEmpty()) text = label->text();
  if (const auto* button = as<QAbstractButton>(widget); button && text.isEmpty()) text = button->text();
  if (const auto* box = as<QGroupBox>(widget); box && text.isEmpty()) text = box->title();
  if (text.isEmpty()) text = widget.objectName();
  return QStringLiteral("%1 '%2'").arg(QLatin1String(widget.metaObject()->className()), text.simplified());
}

int width_of(const QWidget& widget, const QString& text, int flags = Qt::TextShowMnemonic) {
  return widget.fontMetrics().size(flags, text).width();
}

int room_in(const QAbstractButton& button, QStyle::SubElement contents) {
  QStyleOptionButton option;
  option.initFrom(&button);
  option.text = button.text();
  return button.style()->subElementRect(contents, &option, &button).width();
}

int room_in(const QComboBox& list) {
  QStyleOptionComboBox option;
  option.initFrom(&list);
  option.editable = list.isEditable();
  return list.style()
      ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &list)
      .width();
}

/// Width that the longest text of a control needs, and what it has.
struct Need {
  int needs = 0;
  int has = 0;
};

Need need_of(const QAbstractButton& button) {
  const int needs = button.text().isEmpty() ? 0 : width_of(button, button.text());
  if (as<QCheckBox>(button)) return {needs, room_in(button, QStyle::SE_CheckBoxContents)};
  if (as<QRadioButton>(button)) return {needs, room_in(button, QStyle::SE_RadioButtonContents)};
  if (as<QPushButton>(button)) return {needs, room_in(button, QStyle::SE_PushButtonContents)};
  return {needs, button.width()};
}

Need need_of(const QComboBox& list) {
  Need need{0, room_in(list)};
  if (list.sizeAdjustPolicy() == QComboBox::AdjustToMinimumContentsLengthWithIcon) return need;
  for (int i = 0; i < list.count(); ++i)
    need.needs = std::max(need.needs, width_of(list, list.itemText(i), 0));
  return need;
}

Need need_of(const QLineEdit& edit) {
  const QString text = edit.text();
  if (text.size() > kShortText) return {};
  const QMargins margins = edit.textMargins();
  return {width_of(edit, text, 0),
          edit.contentsRect().width() - 2 * kEditMargin - margins.left() - margins.right()};
}

QStringList extremes_of(const QAbstractSpinBox& box) {
  const auto* number = as<QSpinBox>(box);
  if (!number) return {box.text()};
  return {box.text(), QString::number(number->minimum()), QString::number(number->maximum())};
}

Need need_of(const QAbstractSpinBox& box) {
  const auto* edit = box.findChild<QLineEdit*>();
  Need need{0, edit ? edit->contentsRect().width() - 2 * kEditMargin : box.width()};
  for (const QString& text : extremes_of(box)) {
    if (text.size() <= kShortText) need.needs = std::max(need.needs, width_of(box, text, 0));
  }
  return need;
}

Need need_of(const QGroupBox& box) {
  QStyleOptionGroupBox option;
  option.initFrom(&box);
  option.text = box.title();
  option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
  const QRect label =
      box.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, &box);
  return {width_of(box, box.title()),
          std::min(label.right(), box.width() - 1) - std::max(label.left(), 0) + 1};
}

Need need_of(const QWidget& widget) {
  if (const auto* label = as<QLabel>(widget)) {
    if (label->wordWrap() || label->text().isEmpty()) return {};
    return {label->sizeHint().width(), label->width()};
  }
  if (const auto* button = as<QAbstractButton>(widget)) return need_of(*button);
  if (const auto* list = as<QComboBox>(widget)) return need_of(*list);
  if (const auto* box = as<QAbstractSpinBox>(widget)) return need_of(*box);
  if (const auto* edit = as<QLineEdit>(widget)) return need_of(*edit);
  if (const auto* box = as<QGroupBox>(widget)) return need_of(*box);
  return {};
}

/// The height that one line of text needs, where the control shows text.
int line_height(const QWidget& widget) {
  if (const auto* label = as<QLabel>(widget)) {
    if (label->text().isEmpty()) return 0;
    return label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
  }
  const auto* button = as<QAbstractButton>(widget);
  const bool shows_text = (button && !button->text().isEmpty()) || as<QComboBox>(widget) ||
                          as<QAbstractSpinBox>(widget) || as<QLineEdit>(widget);
  return shows_text ? widget.fontMetrics().height() : 0;
}

class Inspector {
 public:
  explicit Inspector(const QWidget& window) : window_(window) {}

  std::vector<std::string> faults() {
    for (const QWidget* widget : window_.findChildren<QWidget*>()) {
      if (!widget->isVisibleTo(&window_) || widget->window() != window_.window()) continue;
      if (const auto* header = as<QHeaderView>(*widget)) look_at_sections(*header);
      if (const auto* menu = as<QMenuBar>(*widget)) look_at_items(*menu);
      if (const auto* area = as<QScrollArea>(*widget)) look_at_scrolling(*area);
      if (is_inner_part(*widget)) continue;
      look_at_text(*widget);
      look_at_place(*widget);
    }
    return std::move(faults_);
  }

 private:
  void add(const QWidget& widget, const QString& fault) {
    faults_.push_back(from_qt(name_of(widget) + u' ' + fault));
  }

  void look_at_text(const QWidget& widget) {
    const Need need = need_of(widget);
    if (need.needs > 0 && need.needs > need.has)
      add(widget, QStringLiteral("cuts off its text: needs %1, has %2").arg(need.needs).arg(need.has));
    const int height = line_height(widget);
    if (height > widget.height())
      add(widget,
          QStringLiteral("is too low for its text: needs %1, has %2").arg(height).arg(widget.height()));
  }

  void look_at_place(const QWidget& widget) {
    const QWidget& parent = *widget.parentWidget();
    const bool scrolled = qobject_cast<const QScrollArea*>(parent.parentWidget()) != nullptr;
    if (!scrolled && !parent.rect().contains(widget.geometry()))
      add(widget, "reaches out of " + name_of(parent));
    if (as<QStackedWidget>(parent) || as<QMainWindow>(parent)) return;
    // Of two, the one that was made later tells.
    for (const QObject* child : parent.children()) {
      if (child == &widget) break;
      const auto* other = qobject_cast<const QWidget*>(child);
      if (!other || other->isWindow() || !other->isVisibleTo(&parent) || is_inner_part(*other)) continue;
      if (other->geometry().intersects(widget.geometry())) add(widget, "stands over " + name_of(*other));
    }
  }

  void look_at_scrolling(const QScrollArea& area) {
    const QWidget* content = area.widget();
    if (!content || content->width() <= area.viewport()->width()) return;
    add(*content, QStringLiteral("scrolls sideways: is %1 wide, has %2")
                      .arg(content->width())
                      .arg(area.viewport()->width()));
  }

  void look_at_sections(const QHeaderView& header) {
    if (header.orientation() != Qt::Horizontal || !header.model()) return;
    for (int i = 0; i < header.count(); ++i) {
      const QString text = header.model()->headerData(i, Qt::Horizontal).toString();
      const int needs = width_of(header, text, 0);
      if (!header.isSectionHidden(i) && needs > header.sectionSize(i))
        add(header, QStringLiteral("cuts off '%1': needs %2, has %3")
                        .arg(text)
                        .arg(needs)
                        .arg(header.sectionSize(i)));
    }
  }

  void look_at_items(const QMenuBar& menu) {
    for (QAction* action : menu.actions()) {
      if (action->isVisible() && !menu.rect().contains(menu.actionGeometry(action)))
        add(menu, "hides '" + action->text() + u'\'');
    }
  }

  const QWidget& window_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> layout_faults(const QWidget& window) {
  return Inspector(window).faults();
}

}  // namespace qv5123
