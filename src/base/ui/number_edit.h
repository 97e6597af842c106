#pragma once

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSpinBox>

#include <optional>

/// The window's edits for numbers. What is out of range may be typed and is marked while it stands; it
/// becomes the nearest end of the range once it is taken, never a third number. Text that is no number at all
/// is refused as a whole, so that nothing is left of a paste. Digits and the point are those of English,
/// whatever the language; a decimal comma is taken as a point.
namespace qv5123 {

/// Marks `edit` as holding, or having been given, what it does not take; its tooltip tells the range.
/// Assistive tools are told, and read the mark in the description of the edit, or of the box that it belongs
/// to.
void mark_refused(QLineEdit* edit, bool refused);
/// Marks the edit of `box` while what is typed into it is no value of its range, and when a key was refused
/// for that, until it is told another value or left.
void mark_refusals_of(QAbstractSpinBox* box);

/// A whole number with a spin, in the display's base and behind its prefix, if it has one. It tells its value
/// while it is being typed only when Enter is pressed, the focus leaves or somebody takes the text; what is
/// set from outside, as by assistive tools, at once.
class NumberEdit : public QSpinBox {
  Q_OBJECT

 public:
  NumberEdit(int minimum, int maximum);

  QValidator::State validate(QString& text, int& position) const override;
  void fixup(QString& text) const override;

 protected:
  int valueFromText(const QString& text) const override;
  QString textFromValue(int value) const override { return digits_of(value); }

 private:
  QString digits_of(int value) const { return QString::number(value, displayIntegerBase()).toUpper(); }
  QString without_prefix(const QString& text) const;
  std::optional<double> number_in(const QString& digits) const;
};

/// The same for a number with decimals.
class RealEdit : public QDoubleSpinBox {
  Q_OBJECT

 public:
  RealEdit(double minimum, double maximum, int decimals);

  QValidator::State validate(QString& text, int& position) const override;
  void fixup(QString& text) const override;

 protected:
  double valueFromText(const QString& text) const override;
};

}  // namespace qv5123
