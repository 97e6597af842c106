#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <algorithm>
#include <string_view>

#include "registers/register_sheet.h"

namespace qv5123 {

/// The registers of the shown category as the page's list has them.
class RegisterListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr int kNumber = 0, kAddress = 1, kName = 2, kValue = 3, kColumns = 4;
  /// What a column is sorted by: numbers where it shows them.
  static constexpr int kSortRole = Qt::UserRole;

  explicit RegisterListModel(const RegisterSheet& sheet, QObject* parent = nullptr)
      : QAbstractTableModel(parent), sheet_(sheet) {}

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The sheet shows another category, or other values.
  void reset();
  void value_changed(int row);

 private:
  QString text(int row, int column) const;
  QVariant sort_key(int row, int column) const;

  const RegisterSheet& sheet_;
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
