#pragma once

#include <QAbstractTableModel>
#include <QTimer>
#include <optional>
#include <vector>

#include "state/write_journal.h"

namespace qv5123 {

/// The writes of a journal that a filter lets through, the last at the end. A long journal is looked through
/// piece after piece, so that the window never stands still.
class HistoryModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum class Column { time, page, control, values, registers, result };
  static constexpr int kColumns = 6;
  /// How many lines are looked at before the window has its turn again.
  static constexpr std::size_t kPiece = 2000;

  explicit HistoryModel(QObject* parent = nullptr);

  /// Shows this journal, which must live until another one is shown.
  void show_journal(const WriteJournal& journal);
  void set_filter(const WriteFilter& filter);
  /// The journal has become longer.
  void look_on();
  /// Whether all of the journal has been looked through.
  bool settled() const;

  const WriteJournal& journal() const { return *journal_; }
  /// The place in the journal of a row.
  std::size_t place(int row) const { return rows_[static_cast<std::size_t>(row)] - journal_->dropped(); }
  WriteRecord record(int row) const { return journal_->at(place(row)); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void start_anew();
  void look_at_piece();
  void drop_gone();
  const WriteRecord& cached(int row) const;

  WriteJournal empty_;
  const WriteJournal* journal_ = &empty_;
  WriteMatcher matcher_{{}};
  std::vector<std::size_t> rows_;  ///< places, those that were dropped included
  std::size_t looked_at_ = 0;      ///< the same
  QTimer timer_;
  mutable std::size_t cached_place_ = 0;
  mutable std::optional<WriteRecord> cached_;
};

}  // namespace qv5123
