#include "app/ui/find_dialog.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace qv5123 {
namespace {

constexpr QSize kUsualSize{620, 420};

bool begins_a_word(const QString& text, const QString& part) {
  for (qsizetype at = text.indexOf(part, 0, Qt::CaseInsensitive); at >= 0;
       at = text.indexOf(part, at + 1, Qt::CaseInsensitive)) {
    if (at == 0 || !text[at - 1].isLetterOrNumber()) return true;
  }
  return false;
}

}  // namespace

int find_rank(const FindItem& item, const QString& text) {
  const QString wanted = text.simplified();
  for (const QString& word : wanted.split(u' ', Qt::SkipEmptyParts)) {
    if (!item.name.contains(word, Qt::CaseInsensitive) && !item.where.contains(word, Qt::CaseInsensitive))
      return -1;
  }
  if (item.name.compare(wanted, Qt::CaseInsensitive) == 0) return 0;
  if (item.name.startsWith(wanted, Qt::CaseInsensitive)) return 1;
  if (begins_a_word(item.name, wanted)) return 2;
  return item.name.contains(wanted, Qt::CaseInsensitive) ? 3 : 4;
}

FindDialog::FindDialog(QWidget* parent)
    : QDialog(parent), text_(new QLineEdit), list_(new QTreeWidget), count_(new QLabel) {
  resize(kUsualSize);
  text_->setAccessibleName("Find");
  text_->setPlaceholderText("A part of a name, an address or a page");
  text_->setToolTip("Up and down choose, Return goes there");
  text_->setClearButtonEnabled(true);
  text_->installEventFilter(this);
  list_->setAccessibleName("Found");
  list_->setToolTip("What has all the words in its name or place. Return goes there.");
  list_->setHeaderLabels({"Name", "Where"});
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setColumnWidth(0, kUsualSize.width() / 2);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(text_);
  rows->addWidget(list_, 1);
  rows->addWidget(count_);
  connect(text_, &QLineEdit::textChanged, this, &FindDialog::show_found);
  connect(text_, &QLineEdit::returnPressed, this, &FindDialog::go);
  connect(list_, &QTreeWidget::itemActivated, this, &FindDialog::go);
}

void FindDialog::look_for(const QString& title, std::vector<FindItem> items) {
  setWindowTitle(title);
  items_ = std::move(items);
  text_->selectAll();
  show_found();
  show();
  raise();
  activateWindow();
  text_->setFocus();
}

void FindDialog::show_found() {
  std::vector<std::pair<int, std::size_t>> ranked;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const int rank = find_rank(items_[i], text_->text());
    if (rank >= 0) ranked.emplace_back(rank, i);
  }
  std::ranges::sort(ranked);
  found_.clear();
  list_->clear();
  QList<QTreeWidgetItem*> rows;
  for (const auto& [rank, i] : ranked) {
    if (rows.size() == kShown) break;
    found_.push_back(i);
    rows << new QTreeWidgetItem({items_[i].name, items_[i].where});
  }
  list_->addTopLevelItems(rows);
  if (!rows.isEmpty()) list_->setCurrentItem(rows.first());
  const auto all = static_cast<int>(ranked.size());
  count_->setText(all > kShown ? QString("%1 found, the first %2 are shown").arg(all).arg(kShown)
                               : QString("%1 found").arg(all));
}

void FindDialog::go() {
  const int row = list_->indexOfTopLevelItem(list_->currentItem());
  if (row < 0) return;
  const std::function<void()> go = items_[found_[static_cast<std::size_t>(row)]].go;
  accept();
  // Behind what the closing does to the keyboard.
  QTimer::singleShot(0, parentWidget(), [window = parentWidget(), go] {
    window->activateWindow();
    go();
  });
}

bool FindDialog::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      QApplication::sendEvent(list_, event);
      return true;
    default:
      return false;
  }
}

}  // namespace qv5123
