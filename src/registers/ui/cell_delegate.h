#pragma once

#include <QStyledItemDelegate>

namespace qv5123 {

/// Draws the cells of a CMultilineList and edits them in place.
class CellDelegate final : public QStyledItemDelegate {
  Q_OBJECT

 public:
  static constexpr int kTextMargin = 2;  ///< pixels around a cell's text
  /// Neither mnemonics nor tabs mean anything in a cell.
  static constexpr int kTextFlags = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop;
  /// Of a cell: what its editor offers.
  static constexpr int kChoicesRole = Qt::UserRole;

  using QStyledItemDelegate::QStyledItemDelegate;

  /// Painting knows line feeds only.
  static QString lines_of(QString text);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

 signals:
  void edited(int column, int row, int number) const;
};

}  // namespace qv5123
