#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <optional>

#include "base/ui/kept_text.h"
#include "registers/register_favourites.h"
#include "registers/ui/register_filter.h"

class QComboBox;
class QLabel;
class QLineEdit;

namespace qv5123 {

/// Marks the current register, and keeps what is marked.
class FavouriteButton final : public QPushButton, public KeptText {
 public:
  /// `taken` hears that other registers are marked than before.
  FavouriteButton(RegisterFavourites& favourites, std::function<void()> taken);
  QString kept_text() const override;
  void take_kept(const QString& text) override;

 private:
  RegisterFavourites& favourites_;
  const std::function<void()> taken_;
};

/// What the user filters the register list by, and the button that marks registers for it.
class RegisterFilterBar final : public QWidget {
  Q_OBJECT

 public:
  /// Outlives it.
  explicit RegisterFilterBar(RegisterFavourites& favourites, QWidget* parent = nullptr);

  QString words() const;
  OnlyRegisters only() const;
  /// The controls in the order of the tab key.
  QList<QWidget*> controls() const;
  /// Nothing is filtered any more. Says so with changed() where something was.
  void clear();
  /// How many registers are listed; nothing while they are those of the category.
  void show_count(std::optional<int> count);
  /// Whether the current register is marked; nothing while there is none.
  void show_favourite(std::optional<bool> marked);

 signals:
  void changed();
  /// Return or Down: the user goes on to the list.
  void list_wanted();
  /// The user marks the current register, or no more.
  void favourite_clicked(bool on);
  /// Others are marked than before.
  void favourites_taken();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLineEdit* words_;
  QComboBox* only_;
  QLabel* count_;
  FavouriteButton* favourite_;
};

}  // namespace qv5123
