#include "state/ui/history_model.h"

#include <QDateTime>
#include <algorithm>
#include <array>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

using Column = HistoryModel::Column;

constexpr std::array kHeaders{"Time", "Page", "Control", "Values", "Registers", "Result"};
static_assert(kHeaders.size() == HistoryModel::kColumns);
/// Of what is shown and read out of one cell.
constexpr qsizetype kLongest = 400;

QString time_text(const WriteRecord& record, const char* format) {
  return QDateTime::fromMSecsSinceEpoch(record.time.time_since_epoch().count()).toString(format);
}

QString cell(const WriteRecord& record, Column column) {
  switch (column) {
    case Column::time:
      return time_text(record, "HH:mm:ss.zzz");
    case Column::page:
      return to_qt(record.page);
    case Column::control:
      return to_qt(record.control);
    case Column::values:
      return to_qt(values_text(record));
    case Column::registers:
      return to_qt(registers_text(record));
    default:
      return to_qt(result_text(record));
  }
}

/// The whole of a cell, and the day of a time.
QString tool_tip(const WriteRecord& record, Column column) {
  if (column == Column::time) return time_text(record, "yyyy-MM-dd HH:mm:ss.zzz");
  return plain_tool_tip(cell(record, column).left(10 * kLongest));
}

}  // namespace

HistoryModel::HistoryModel(QObject* parent) : QAbstractTableModel(parent) {
  connect(&timer_, &QTimer::timeout, this, &HistoryModel::look_at_piece);
}

void HistoryModel::show_journal(const WriteJournal& journal) {
  journal_ = &journal;
  start_anew();
}

void HistoryModel::set_filter(const WriteFilter& filter) {
  matcher_ = WriteMatcher(filter);
  start_anew();
}

void HistoryModel::start_anew() {
  beginResetModel();
  rows_.clear();
  cached_.reset();
  looked_at_ = 0;
  endResetModel();
  look_on();
}

void HistoryModel::look_on() {
  drop_gone();
  if (!settled()) look_at_piece();
}

bool HistoryModel::settled() const {
  return looked_at_ >= journal_->dropped() + journal_->size();
}

void HistoryModel::drop_gone() {
  looked_at_ = std::max(looked_at_, journal_->dropped());
  const auto kept = std::lower_bound(rows_.begin(), rows_.end(), journal_->dropped());
  if (kept == rows_.begin()) return;
  beginRemoveRows({}, 0, static_cast<int>(kept - rows_.begin()) - 1);
  rows_.erase(rows_.begin(), kept);
  cached_.reset();
  endRemoveRows();
}

void HistoryModel::look_at_piece() {
  const std::size_t end = std::min(looked_at_ + kPiece, journal_->dropped() + journal_->size());
  std::vector<std::size_t> found;
  for (; looked_at_ < end; ++looked_at_) {
    if (matcher_.matches(journal_->line(looked_at_ - journal_->dropped()))) found.push_back(looked_at_);
  }
  if (!found.empty()) {
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(found.size()) - 1);
    rows_.insert(rows_.end(), found.begin(), found.end());
    endInsertRows();
  }
  if (settled()) {
    timer_.stop();
  } else if (!timer_.isActive()) {
    timer_.start(0);
  }
}

const WriteRecord& HistoryModel::cached(int row) const {
  // A view asks for one row's cells after the other.
  if (!cached_ || cached_place_ != rows_[static_cast<std::size_t>(row)]) {
    cached_place_ = rows_[static_cast<std::size_t>(row)];
    cached_ = record(row);
  }
  return *cached_;
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int HistoryModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
  const auto column = static_cast<Column>(index.column());
  if (role == Qt::DisplayRole) return cell(cached(index.row()), column).left(kLongest);
  if (role == Qt::ToolTipRole) return tool_tip(cached(index.row()), column);
  return {};
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return QLatin1String(kHeaders[static_cast<std::size_t>(section)]);
}

}  // namespace qv5123
