#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "state/comparison.h"

namespace qv5123 {

/// The values of a comparison that a filter lets through, page after page. What stands for the chip and was
/// only sent is in italics, and says so to assistive tools.
class CompareModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// The last is there only while there are values for it.
  enum class Column { page, name, caption, in_page, on_chip, in_file, other };
  static constexpr int kColumns = 7;

  /// The states must outlive it.
  explicit CompareModel(const ValueStates& states, QObject* parent = nullptr);

  const Comparison& comparison() const { return comparison_; }
  /// The values that are shown, as the comparison counts them.
  const std::vector<std::size_t>& values() const { return values_; }

  /// Takes what is known by now. Rows come and go as values begin and end to differ.
  void look_again();
  void set_filter(const CompareFilter& filter);
  void set_other(std::optional<OtherValues> values);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString cell(std::size_t value, Column column) const;
  QString tool_tip(std::size_t value, Column column) const;
  QVariant tint(std::size_t value, Column column) const;
  QVariant font(std::size_t value, Column column) const;
  /// Whether it is only what was sent, and the chip was not asked since.
  bool is_guessed(std::size_t value, Column column) const;

  Comparison comparison_;
  CompareFilter filter_;
  std::vector<std::size_t> values_;
};

}  // namespace qv5123
