#include "base/ui/number_edit.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPalette>
#include <QTimer>

#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>
#include <utility>

namespace qv5123 {
namespace {

constexpr QLatin1String kNotAsItStands("Not taken as it stands: ");
constexpr qsizetype kMostDigits = 15;
constexpr qsizetype kMostHexDigits = 8;

QLineEdit* edit_of(const QAbstractSpinBox* box) {
  return box->findChild<QLineEdit*>();
}

// By hand: the library of regular expressions would be half a megabyte more at the start.

QStringView without_sign(QStringView text) {
  return text.startsWith(u'-') || text.startsWith(u'+') ? text.mid(1) : text;
}

bool are_digits(QStringView text, qsizetype most) {
  return text.size() <= most && std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
}

std::optional<double> whole_number(const QString& text) {
  const QStringView digits = without_sign(text);
  if (digits.isEmpty() || !are_digits(digits, kMostDigits)) return std::nullopt;
  return text.toDouble();
}

std::optional<double> hex_number(const QString& text) {
  const auto is_hex = [](QChar c) { return c < QChar(128) && std::isxdigit(c.unicode()) != 0; };
  if (text.isEmpty() || text.size() > kMostHexDigits || !std::ranges::all_of(text, is_hex))
    return std::nullopt;
  return text.toUInt(nullptr, 16);
}

/// A decimal comma counts as a point.
std::optional<double> real_number(QString text) {
  text.replace(',', '.');
  const QStringView number = without_sign(text);
  const qsizetype point = number.indexOf(u'.');
  const QStringView whole = point < 0 ? number : number.left(point);
  const QStringView fraction = point < 0 ? QStringView() : number.mid(point + 1);
  if (whole.isEmpty() && fraction.isEmpty()) return std::nullopt;
  if (!are_digits(whole, kMostDigits) || !are_digits(fraction, kMostDigits)) return std::nullopt;
  return text.toDouble();
}

/// Nothing typed yet, or what a number may begin with.
bool is_begun(const QString& text, bool real) {
  const QStringView rest = without_sign(text);
  return rest.isEmpty() || (real && (rest == u"." || rest == u","));
}

template <class Box, class Read>
QValidator::State validated(const Box& box, const QString& text, Read read) {
  const QString typed = text.trimmed();
  if (is_begun(typed, std::is_same_v<decltype(box.value()), double>)) return QValidator::Intermediate;
  const std::optional<double> number = read(typed);
  if (!number) return QValidator::Invalid;
  const bool held = *number >= box.minimum() && *number <= box.maximum();
  return held ? QValidator::Acceptable : QValidator::Intermediate;
}

/// What is set while nobody types in it is what somebody wants there: it does not wait for the focus to
/// leave.
void take_what_is_set(QAbstractSpinBox* box) {
  QLineEdit* edit = edit_of(box);
  QObject::connect(edit, &QLineEdit::textChanged, box, [box, edit] {
    if (!edit->hasFocus()) QTimer::singleShot(0, box, [box] { box->interpretText(); });
  });
}

template <class Box>
void prepare(Box* box) {
  box->setLocale(QLocale::c());
  box->setKeyboardTracking(false);
  mark_refusals_of(box);
  take_what_is_set(box);
}

/// What a mark says to who does not see it. The tooltip is what is read otherwise.
void tell_refused(QLineEdit* edit, bool refused) {
  auto* box = qobject_cast<QAbstractSpinBox*>(edit->parentWidget());
  QWidget* control = box ? static_cast<QWidget*>(box) : edit;
  if (refused == control->accessibleDescription().startsWith(kNotAsItStands)) return;
  control->setAccessibleDescription(refused ? kNotAsItStands + control->toolTip() : QString());
  if (!refused) return;
  QAccessibleEvent alert(control, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

}  // namespace

void mark_refused(QLineEdit* edit, bool refused) {
  QPalette palette;
  if (refused) {
    palette.setColor(QPalette::Base, QColor(0xC0, 0x30, 0x30));
    palette.setColor(QPalette::Text, Qt::white);
  }
  // What is not set here comes from the page.
  edit->setPalette(palette);
  tell_refused(edit, refused);
}

void mark_refusals_of(QAbstractSpinBox* box) {
  QLineEdit* edit = edit_of(box);
  auto mark = [edit, marked = std::make_shared<bool>(false)](bool refused) {
    if (refused != std::exchange(*marked, refused)) mark_refused(edit, refused);
  };
  // An empty edit is on the way to another value.
  auto look = [edit, mark]() mutable { mark(!edit->text().isEmpty() && !edit->hasAcceptableInput()); };
  QObject::connect(edit, &QLineEdit::textChanged, box, [box, look]() mutable {
    look();
    // Text that is taken is replaced in silence where the value stays what it was.
    QTimer::singleShot(0, box, [look]() mutable { look(); });
  });
  QObject::connect(edit, &QLineEdit::inputRejected, box, [mark]() mutable { mark(true); });
  // The box is silent in its edit about what it writes there itself.
  const auto unmark = [mark]() mutable { mark(false); };
  QObject::connect(box, &QAbstractSpinBox::editingFinished, box, unmark);
  if (auto* number = qobject_cast<QSpinBox*>(box))
    QObject::connect(number, &QSpinBox::valueChanged, box, unmark);
  if (auto* number = qobject_cast<QDoubleSpinBox*>(box))
    QObject::connect(number, &QDoubleSpinBox::valueChanged, box, unmark);
}

NumberEdit::NumberEdit(int minimum, int maximum) {
  setRange(minimum, maximum);
  prepare(this);
}

QString NumberEdit::without_prefix(const QString& text) const {
  const QString typed = text.trimmed();
  return typed.startsWith(prefix()) ? typed.mid(prefix().size()) : typed;
}

std::optional<double> NumberEdit::number_in(const QString& digits) const {
  return displayIntegerBase() == 16 ? hex_number(digits) : whole_number(digits);
}

QValidator::State NumberEdit::validate(QString& text, int&) const {
  return validated(*this, without_prefix(text), [this](const QString& digits) { return number_in(digits); });
}

void NumberEdit::fixup(QString& text) const {
  const auto number = number_in(without_prefix(text));
  if (number)
    text = prefix() + digits_of(static_cast<int>(std::clamp<double>(*number, minimum(), maximum())));
}

int NumberEdit::valueFromText(const QString& text) const {
  return static_cast<int>(
      std::clamp<double>(number_in(without_prefix(text)).value_or(value()), minimum(), maximum()));
}

RealEdit::RealEdit(double minimum, double maximum, int decimals) {
  setDecimals(decimals);
  setRange(minimum, maximum);
  prepare(this);
}

QValidator::State RealEdit::validate(QString& text, int&) const {
  return validated(*this, text, real_number);
}

void RealEdit::fixup(QString& text) const {
  const auto number = real_number(text.trimmed());
  if (number) text = QString::number(std::clamp(*number, minimum(), maximum()), 'f', decimals());
}

double RealEdit::valueFromText(const QString& text) const {
  return std::clamp(real_number(text.trimmed()).value_or(value()), minimum(), maximum());
}

}  // namespace qv5123
