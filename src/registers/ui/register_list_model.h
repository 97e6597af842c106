#pragma once

#include <QAbstractTableModel>

#include "registers/register_sheet.h"

namespace qv5123 {

/// The registers of the shown category as the page's list has them.
class RegisterListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kNumber, kAddress, kName, kValue, kColumns };

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

  const RegisterSheet& sheet_;
  int rows_ = 0;
};

}  // namespace qv5123
