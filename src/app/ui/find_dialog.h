#pragma once

#include <QDialog>
#include <functional>
#include <vector>

class QLabel;
class QLineEdit;
class QTreeWidget;

namespace qv5123 {

/// What can be found, and what going there does.
struct FindItem {
  QString name;
  QString where;
  std::function<void()> go;
};

/// How well `item` answers to `text`, whose words must all be parts of its name or place: 0 best, as when the
/// name begins with it; -1 not at all. Upper and lower case are the same.
int find_rank(const FindItem& item, const QString& text);

/// Types a part of a name, chooses among what has it, and goes there.
class FindDialog final : public QDialog {
  Q_OBJECT

 public:
  /// As many are listed at most; the others are counted.
  static constexpr int kShown = 200;

  explicit FindDialog(QWidget* parent);

  /// Opens it anew over these.
  void look_for(const QString& title, std::vector<FindItem> items);

 protected:
  /// Up and down choose while the text has the keyboard.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void show_found();
  void go();

  std::vector<FindItem> items_;
  std::vector<std::size_t> found_;
  QLineEdit* text_;
  QTreeWidget* list_;
  QLabel* count_;
};

}  // namespace qv5123
