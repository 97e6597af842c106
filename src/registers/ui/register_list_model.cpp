#include "registers/ui/register_list_model.h"

#include "base/ui/qt_text.h"

namespace qv5123 {

int RegisterListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int RegisterListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QString RegisterListModel::text(int row, int column) const {
  const auto at = static_cast<std::size_t>(row);
  switch (column) {
    case kNumber:
      return QString::number(row);
    case kAddress:
      return shown_name(sheet_.row(at).address_text);
    case kName:
      return shown_name(sheet_.row(at).name);
    default:
      return QString::fromStdU16String(sheet_.value_cell(at));
  }
}

QVariant RegisterListModel::sort_key(int row, int column) const {
  const auto at = static_cast<std::size_t>(row);
  if (column == kNumber) return row;
  if (column == kAddress) return sheet_.row_address(at);
  if (column == kValue) return ParseRegAddress(sheet_.value_cell(at));
  return text(row, column).toLower();
}

QVariant RegisterListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows_) return {};
  if (role == Qt::DisplayRole) return text(index.row(), index.column());
  if (role == kSortRole) return sort_key(index.row(), index.column());
  if (role == Qt::TextAlignmentRole) return int(Qt::AlignCenter);
  // Names may be longer than their column.
  if (role == Qt::ToolTipRole && index.column() == kName) return plain_tool_tip(text(index.row(), kName));
  return {};
}

QVariant RegisterListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case kNumber:
      return "No.";
    case kAddress:
      return "Addr";
    case kName:
      return "Name";
    default:
      return "Value";
  }
}

void RegisterListModel::reset() {
  beginResetModel();
  rows_ = static_cast<int>(sheet_.rows());
  endResetModel();
}

void RegisterListModel::value_changed(int row) {
  const QModelIndex cell = index(row, kValue);
  emit dataChanged(cell, cell, {Qt::DisplayRole, kSortRole});
}

}  // namespace qv5123
