#include "state/ui/compare_model.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <array>
#include <utility>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

using Column = CompareModel::Column;

constexpr std::array kHeaders{"Page", "Name", "Control", "In page", "On chip", "In file"};
static_assert(kHeaders.size() == CompareModel::kColumns - 1);
/// What stands behind a value that stands out, light enough for text in either palette.
const std::array<QColor, 4> kTints{QColor(0xE0, 0x8A, 0x00, 0x50), QColor(0x8E, 0x44, 0xAD, 0x50),
                                   QColor(0x1F, 0x6F, 0xC4, 0x50), QColor(0x80, 0x80, 0x80, 0x50)};

/// Of a column from Column::in_page on.
Place place_of(Column column) {
  return static_cast<Place>(static_cast<int>(column) - static_cast<int>(Column::in_page));
}

QString chip_text(const ChipValue& chip) {
  const QString how = known_text(chip.how);
  if (chip.how == Known::nothing) return how;
  const auto time = std::chrono::time_point_cast<std::chrono::milliseconds>(chip.when).time_since_epoch();
  return how + QDateTime::fromMSecsSinceEpoch(time.count()).toString(", HH:mm:ss");
}

}  // namespace

CompareModel::CompareModel(const ValueStates& states, QObject* parent)
    : QAbstractTableModel(parent), comparison_(states), values_(comparison_.find(filter_)) {}

void CompareModel::look_again() {
  comparison_.look_again();
  std::vector<std::size_t> values = comparison_.find(filter_);
  if (values == values_) {
    if (!values_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    return;
  }
  beginResetModel();
  values_ = std::move(values);
  endResetModel();
}

void CompareModel::set_filter(const CompareFilter& filter) {
  beginResetModel();
  filter_ = filter;
  values_ = comparison_.find(filter_);
  endResetModel();
}

void CompareModel::set_other(std::optional<OtherValues> values) {
  beginResetModel();
  comparison_.set_other(std::move(values));
  values_ = comparison_.find(filter_);
  endResetModel();
}

int CompareModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(values_.size());
}

int CompareModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return comparison_.other() ? kColumns : kColumns - 1;
}

QString CompareModel::cell(std::size_t value, Column column) const {
  switch (column) {
    case Column::page:
      return to_qt(comparison_.page_name(value));
    case Column::name:
      return to_qt(comparison_.field(value).name);
    case Column::caption:
      return to_qt(comparison_.field(value).caption.caption());
    default:
      return to_qt(comparison_.text(value, place_of(column)));
  }
}

QString CompareModel::tool_tip(std::size_t value, Column column) const {
  const ValueState& state = comparison_.state(value);
  const FieldInfo& field = comparison_.field(value);
  if (column < Column::in_page) return plain_tool_tip(to_qt(field.range_text()));
  if (column == Column::on_chip)
    return field.has_reply() ? chip_text(state.chip) : "The chip does not report it";
  if (column == Column::in_page && !state.page) return "The page was not opened";
  if (column == Column::in_file && !field.has_entry()) return "No setting file holds it";
  return {};
}

QVariant CompareModel::tint(std::size_t value, Column column) const {
  if (column < Column::in_page || !comparison_.stands_out(value, place_of(column))) return {};
  return kTints[static_cast<std::size_t>(place_of(column))];
}

bool CompareModel::is_guessed(std::size_t value, Column column) const {
  return column == Column::on_chip && comparison_.state(value).chip.how == Known::sent;
}

QVariant CompareModel::font(std::size_t value, Column column) const {
  const bool stands_out = tint(value, column).isValid();
  if (!stands_out && !is_guessed(value, column)) return {};
  QFont font;
  font.setBold(stands_out);
  font.setItalic(is_guessed(value, column));
  return font;
}

QVariant CompareModel::data(const QModelIndex& index, int role) const {
  const std::size_t value = values_[static_cast<std::size_t>(index.row())];
  const auto column = static_cast<Column>(index.column());
  switch (role) {
    case Qt::DisplayRole:
      return cell(value, column);
    case Qt::AccessibleTextRole:
      if (is_guessed(value, column)) return cell(value, column) + ", " + known_text(Known::sent);
      return {};
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
      return tool_tip(value, column);
    case Qt::BackgroundRole:
      return tint(value, column);
    case Qt::FontRole:
      return font(value, column);
    default:
      return {};
  }
}

QVariant CompareModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  if (static_cast<Column>(section) == Column::other)
    return comparison_.other() ? to_qt(comparison_.other()->title) : QString();
  return QLatin1String(kHeaders[static_cast<std::size_t>(section)]);
}

}  // namespace qv5123
