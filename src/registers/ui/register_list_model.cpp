#include "registers/ui/register_list_model.h"

#include <QFont>

#include "base/ui/qt_text.h"
#include "registers/hex_edit.h"

namespace qv5123 {
namespace {

QFont bold() {
  QFont font;
  font.setBold(true);
  return font;
}

}  // namespace

int RegisterListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int RegisterListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QString RegisterListModel::text(int row, int column) const {
  switch (column) {
    case kNumber:
      return QString::number(entry(row).index_in_category);
    case kAddress:
      return shown_name(entry(row).address_text);
    case kName:
      return shown_name(entry(row).name);
    default:
      return QString::fromStdU16String(sheet_.value_of(static_cast<std::size_t>(row)));
  }
}

QVariant RegisterListModel::sort_key(int row, int column) const {
  if (column == kNumber) return entry(row).index_in_category;
  if (column == kAddress) return sheet_.cell_address(static_cast<std::size_t>(row));
  if (column == kValue) return ParseRegAddress(sheet_.value_of(static_cast<std::size_t>(row)));
  return text(row, column).toLower();
}

QString RegisterListModel::tip(int row, int column) const {
  const RegEntry& entry = this->entry(row);
  if (column == kValue && entry.changed())
    return entry.before >= 0 ? "At first " + QString::fromStdU16String(hex_text(entry.before, 2))
                             : QString("Written before it was read");
  if (column != kName) return {};
  // Names may be longer than their column.
  const auto category = static_cast<std::size_t>(entry.category);
  const auto& categories = sheet_.description().categories;
  return text(row, kName) +
         (category < categories.size() ? ", " + shown_name(categories[category]) : QString());
}

QString RegisterListModel::spoken(int row, int column) const {
  if (column == kName && favourites_.has(entry(row))) return text(row, column) + ", favourite";
  if (column == kValue && entry(row).changed()) return text(row, column) + ", changed";
  return text(row, column);
}

bool RegisterListModel::is_marked(int row, int column) const {
  return (column == kName && favourites_.has(entry(row))) || (column == kValue && entry(row).changed());
}

QVariant RegisterListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows_) return {};
  const int row = index.row(), column = index.column();
  switch (role) {
    case Qt::DisplayRole:
      return text(row, column);
    case kSortRole:
      return sort_key(row, column);
    case Qt::TextAlignmentRole:
      return int(Qt::AlignCenter);
    case Qt::ToolTipRole:
      return plain_tool_tip(tip(row, column));
    case Qt::AccessibleTextRole:
      return spoken(row, column);
    case Qt::FontRole:
      return is_marked(row, column) ? bold() : QVariant();
    default:
      return {};
  }
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
  rows_ = static_cast<int>(sheet_.description().registers.size());
  endResetModel();
}

void RegisterListModel::value_changed(std::size_t reg) {
  const QModelIndex cell = index(static_cast<int>(reg), kValue);
  emit dataChanged(cell, cell);
}

void RegisterListModel::values_changed() {
  column_changed(kValue);
}

void RegisterListModel::favourites_changed() {
  column_changed(kName);
}

void RegisterListModel::column_changed(int column) {
  if (rows_ > 0) emit dataChanged(index(0, column), index(rows_ - 1, column));
}

}  // namespace qv5123
