#pragma once

#include <QSortFilterProxyModel>
#include <QStringList>
#include <vector>

#include "registers/register_favourites.h"
#include "registers/register_sheet.h"

namespace qv5123 {

/// Which registers are wanted beside the words that they are to hold.
enum class OnlyRegisters { any, changed, favourites };

/// The rows of the register list: those of the shown category, or of all categories what the user filters by.
/// What is listed stays until the user chooses again, also where it no longer is what was asked for: a row
/// that is worked on does not go away.
class RegisterFilter final : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  /// Both outlive it.
  RegisterFilter(const RegisterSheet& sheet, const RegisterFavourites& favourites, QObject* parent);

  /// Takes the user's choice. A register has all words in its address, its name, its category's or those of
  /// its bit fields. To be followed by a reset of the source, as are the next two.
  void choose(const QString& words, OnlyRegisters only);
  void take_description();
  void take_category();
  /// Whether rows of all categories may be listed.
  bool active() const { return !words_.isEmpty() || only_ != OnlyRegisters::any; }

  /// Lists as well what has come to be asked for since.
  void look_again();

 protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

 private:
  bool wants(std::size_t reg) const;
  bool has_words(std::size_t reg) const;
  void make_texts() const;
  void decide();

  const RegisterSheet& sheet_;
  const RegisterFavourites& favourites_;
  QStringList words_;
  OnlyRegisters only_ = OnlyRegisters::any;
  std::vector<bool> listed_;
  mutable QStringList texts_;  // what words are looked for in; empty until somebody does
};

}  // namespace qv5123
