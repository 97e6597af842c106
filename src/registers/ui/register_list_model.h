#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <algorithm>
#include <string_view>

#include "registers/register_favourites.h"
#include "registers/register_sheet.h"

namespace qv5123 {

/// All registers of the description, a row each in their order, as the page's list has them.
class RegisterListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr int kNumber = 0, kAddress = 1, kName = 2, kValue = 3, kColumns = 4;
  /// What a column is sorted by: numbers where it shows them.
  static constexpr int kSortRole = Qt::UserRole;

  /// Both outlive it.
  RegisterListModel(const RegisterSheet& sheet, const RegisterFavourites& favourites,
                    QObject* parent = nullptr)
      : QAbstractTableModel(parent), sheet_(sheet), favourites_(favourites) {}

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The sheet has another description, or who filters the rows lists others.
  void reset();
  void value_changed(std::size_t reg);
  void values_changed();
  void favourites_changed();

 private:
  const RegEntry& entry(int row) const {
    return sheet_.description().registers[static_cast<std::size_t>(row)];
  }
  QString text(int row, int column) const;
  QVariant sort_key(int row, int column) const;
  QString tip(int row, int column) const;
  QString spoken(int row, int column) const;
  bool is_marked(int row, int column) const;
  void column_changed(int column);

  const RegisterSheet& sheet_;
  const RegisterFavourites& favourites_;
  int rows_ = 0;
};

/// A description's name for a narrow cell. Many are laid out at once, so one that no cell has the room for is
/// cut.
inline QString shown_name(std::u16string_view name) {
  constexpr std::size_t kLongest = 256;
  const QString shown =
      QString::fromUtf16(name.data(), static_cast<qsizetype>(std::min(name.size(), kLongest)));
  return name.size() > kLongest ? shown + QChar(0x2026) : shown;
}

}  // namespace qv5123
