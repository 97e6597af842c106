#pragma once

#include <QObject>
#include <QPointer>
#include <string>

class QLineEdit;

namespace qv5123 {

/// Follows the edit that has the focus, and tells the text in it that nobody has taken yet.
class TypedText final : public QObject {
 public:
  explicit TypedText(QObject* parent);

  /// "Name of the edit: text"; empty while nothing is being typed.
  std::string text() const;
  /// What stands in the edit now was saved.
  void mark_taken();

 private:
  void follow(QWidget* focused);

  QPointer<QLineEdit> edit_;
  QString name_;
  QString taken_;
};

}  // namespace qv5123
