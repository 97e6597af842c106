#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSet>
#include <QSlider>
#include <QSpinBox>
#include <QWidget>

namespace qv5123::test {

/// The page's one child of this type and accessible name.
template <class Widget>
Widget* find(const QWidget& page, const QString& name) {
  Widget* found = nullptr;
  for (auto* widget : page.findChildren<Widget*>()) {
    if (widget->accessibleName() != name) continue;
    EXPECT_EQ(found, nullptr) << name.toStdString() << " is not unique";
    found = widget;
  }
  EXPECT_NE(found, nullptr) << "no such control: " << name.toStdString();
  return found;
}

template <class Window>
Window* visible() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = qobject_cast<Window*>(widget); window && window->isVisible()) return window;
  }
  return nullptr;
}

/// The left button goes down or up, or is held while the mouse moves.
inline void mouse(QWidget* widget, QEvent::Type type, QPointF at) {
  const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, at, widget->mapToGlobal(at), button, held, Qt::NoModifier);
  QApplication::sendEvent(widget, &event);
}

/// A page used as a user does, who finds controls by the names that assistive tools read out.
class PageDriver {
 public:
  explicit PageDriver(QWidget& page) : page_(page) {}

  template <class Widget>
  Widget* find(const QString& name) const {
    return test::find<Widget>(page_, name);
  }
  void click(const QString& name) const { find<QAbstractButton>(name)->click(); }
  /// As assistive technology switches a check box or a radio button.
  void toggle(const QString& name) const {
    QAccessible::queryAccessibleInterface(find<QAbstractButton>(name))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::toggleAction());
  }
  void type(const QString& name, int value) const { find<QSpinBox>(name)->setValue(value); }
  void type(const QString& name, const QString& text) const {
    auto* edit = find<QLineEdit>(name);
    edit->setText(text);
    emit edit->textEdited(text);
  }
  void choose(const QString& name, int index) const { find<QComboBox>(name)->setCurrentIndex(index); }
  int number(const QString& name) const { return find<QSpinBox>(name)->value(); }
  int index(const QString& name) const { return find<QComboBox>(name)->currentIndex(); }
  QString text(const QString& name) const { return find<QLineEdit>(name)->text(); }
  bool checked(const QString& name) const { return find<QAbstractButton>(name)->isChecked(); }

  /// A name would be read out in place of a label's text.
  void expect_labels_read_out() const {
    for (const QLabel* label : page_.findChildren<QLabel*>()) {
      EXPECT_TRUE(label->accessibleName().isEmpty() || label->accessibleName() == label->text())
          << label->accessibleName().toStdString();
    }
  }

  /// Every control that takes the keyboard has a name of its own and a tooltip.
  void expect_named_controls() const {
    expect_labels_read_out();
    QSet<QString> names;
    for (const QWidget* widget : page_.findChildren<QWidget*>()) {
      // The parts of a spin box, and the lists that drop down in windows of their own.
      const bool is_inner_part = widget->objectName().startsWith("qt_") || widget->window() != page_.window();
      const bool is_out_of_reach = widget->isHidden() && !widget->isEnabled();
      if (is_inner_part || is_out_of_reach || !(widget->focusPolicy() & Qt::TabFocus)) continue;
      const QString name = widget->accessibleName();
      EXPECT_FALSE(name.isEmpty()) << widget->metaObject()->className();
      EXPECT_FALSE(names.contains(name)) << name.toStdString();
      EXPECT_FALSE(widget->toolTip().isEmpty()) << name.toStdString();
      names.insert(name);
    }
  }

 private:
  QWidget& page_;
};

}  // namespace qv5123::test
