#include "registers/ui/register_filter_bar.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <utility>

#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"

namespace qv5123 {

FavouriteButton::FavouriteButton(RegisterFavourites& favourites, std::function<void()> taken)
    : QPushButton("Favourite"), favourites_(favourites), taken_(std::move(taken)) {
  setCheckable(true);
  setAccessibleName("Favourite");
  setToolTip("Marks the register at the address, or no more. \"Favourites\" lists what is marked.");
}

QString FavouriteButton::kept_text() const {
  return to_qt(favourites_.text());
}

void FavouriteButton::take_kept(const QString& text) {
  favourites_.take(from_qt(text));
  taken_();
}

RegisterFilterBar::RegisterFilterBar(RegisterFavourites& favourites, QWidget* parent)
    : QWidget(parent),
      words_(new QLineEdit),
      only_(new QComboBox),
      count_(new QLabel),
      favourite_(keep_choice(new FavouriteButton(favourites, [this] { emit favourites_taken(); }))) {
  words_->setAccessibleName("Filter");
  words_->setPlaceholderText("Filter all categories");
  words_->setToolTip(
      "Lists the registers of all categories that have these words in their address, their name, their "
      "category's or those of their bit fields. Return goes on to the list; empty, the category is listed.");
  words_->setClearButtonEnabled(true);
  words_->installEventFilter(this);
  // In the order of OnlyRegisters.
  only_->addItems({"Any register", "Changed since", "Favourites"});
  only_->setAccessibleName("Show only");
  only_->setToolTip(
      "\"Changed since\" lists what was written, or read as another value, since it was read first or a "
      "register file was loaded. \"Favourites\" lists what is marked. Both of all categories.");
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->addWidget(words_, 0, 0);
  grid->addWidget(count_, 0, 1);
  grid->addWidget(only_, 1, 0);
  grid->addWidget(favourite_, 1, 1);
  grid->setColumnStretch(0, 1);
  connect(words_, &QLineEdit::textChanged, this, &RegisterFilterBar::changed);
  connect(only_, &QComboBox::currentIndexChanged, this, &RegisterFilterBar::changed);
  connect(favourite_, &QAbstractButton::toggled, this, &RegisterFilterBar::favourite_clicked);
}

QString RegisterFilterBar::words() const {
  return words_->text();
}

OnlyRegisters RegisterFilterBar::only() const {
  return static_cast<OnlyRegisters>(only_->currentIndex());
}

QList<QWidget*> RegisterFilterBar::controls() const {
  return {words_, only_, favourite_};
}

void RegisterFilterBar::clear() {
  if (words_->text().isEmpty() && only() == OnlyRegisters::any) return;
  {
    const QSignalBlocker once(this);
    words_->clear();
    only_->setCurrentIndex(0);
  }
  emit changed();
}

void RegisterFilterBar::show_count(std::optional<int> count) {
  count_->setText(count ? QString("%1 found").arg(*count) : QString());
}

void RegisterFilterBar::show_favourite(std::optional<bool> marked) {
  const QSignalBlocker quiet(favourite_);
  favourite_->setEnabled(marked.has_value());
  favourite_->setChecked(marked.value_or(false));
}

bool RegisterFilterBar::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
      emit list_wanted();
      return true;
    default:
      return false;
  }
}

}  // namespace qv5123
