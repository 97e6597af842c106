// The register page's list: what it shows, what is chosen in it, and how it is gone to.
#include <QComboBox>
#include <QHeaderView>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QStyle>
#include <QTableView>

#include "base/ui/page_marks.h"
#include "registers/ui/dlg_isp_register.h"
#include "registers/ui/hex_edits.h"
#include "registers/ui/register_columns.h"
#include "registers/ui/register_list_model.h"
#include "registers/ui/register_places.h"

namespace qv5123 {
namespace {

constexpr ColumnLayout kListColumns[] = {
    {"No.", 30, "2000"}, {"Addr", 50, "0xDDDD"}, {"Name", 120, ""}, {"Value", 50, "0xDD"}};

}  // namespace

void CDlgIspRegister::make_list() {
  list_model_ = new RegisterListModel(desk_.sheet(), this);
  sorted_ = new QSortFilterProxyModel(this);
  sorted_->setSourceModel(list_model_);
  sorted_->setSortRole(RegisterListModel::kSortRole);
  list_->setModel(sorted_);
  list_->setAccessibleName("Registers");
  list_->setToolTip(
      "Registers of the category; a selected one is read. A click on a heading sorts by it, a third one no "
      "more.");
  list_->setSelectionBehavior(QAbstractItemView::SelectRows);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list_->setTabKeyNavigation(false);
  list_->setWordWrap(false);
  list_->setCornerButtonEnabled(false);
  list_->verticalHeader()->hide();
  list_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() + 6);
  list_->horizontalHeader()->setHighlightSections(false);
  list_->horizontalHeader()->setMinimumSectionSize(10);
  list_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  const int margins = 2 * (list_->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list_) + 1) + 4;
  int width = list_->verticalScrollBar()->sizeHint().width() + 2 * list_->frameWidth();
  for (int column = 0; column < RegisterListModel::kColumns; ++column) {
    list_->setColumnWidth(column, column_width(kListColumns[column], *list_, margins));
    width += list_->columnWidth(column);
  }
  list_->setMinimumWidth(width);
  QHeaderView* header = keep_choice(list_->horizontalHeader());
  header->setAccessibleName("Columns of the list");
  // Where there is no scroll bar, names have its room.
  header->setSectionResizeMode(RegisterListModel::kName, QHeaderView::Stretch);
  header->setSortIndicatorClearable(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  list_->setSortingEnabled(true);
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &CDlgIspRegister::follow_selection);
  connect(list_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    if (sorted_->mapToSource(index).row() == desk_.sheet().current_row()) desk_.read();
  });
}

void CDlgIspRegister::follow_selection(const QItemSelection& added) {
  if (showing_selection_) return;
  // Assistive tools add a row and leave the current one where it is.
  if (!added.isEmpty() && !added.contains(list_->currentIndex())) {
    showing_selection_ = true;
    list_->selectionModel()->setCurrentIndex(added.indexes().first(),
                                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    showing_selection_ = false;
  }
  // Not what is newly selected: a click on one of several selected rows only takes the others away.
  const QModelIndex current = list_->currentIndex();
  if (current.isValid() && list_->selectionModel()->isRowSelected(current.row())) {
    desk_.select_row(sorted_->mapToSource(current).row());
  }
}

void CDlgIspRegister::show_selection() {
  // Rows that stand together are one range: the selection's cost grows with the square of its ranges.
  QItemSelection rows;
  const std::vector<int>& selected = desk_.sheet().selected_rows();
  for (std::size_t i = 0; i < selected.size();) {
    const int first = selected[i];
    int last = first;
    while (++i < selected.size() && selected[i] == last + 1) ++last;
    rows.select(list_model_->index(first, 0), list_model_->index(last, 0));
  }
  showing_selection_ = true;
  QItemSelectionModel* selection = list_->selectionModel();
  selection->select(sorted_->mapSelectionFromSource(rows),
                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  const QModelIndex current = sorted_->mapFromSource(list_model_->index(desk_.sheet().current_row(), 0));
  selection->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
  if (current.isValid()) list_->scrollTo(current);
  showing_selection_ = false;
}

std::vector<FoundPlace> CDlgIspRegister::places() const {
  return register_places(desk_.sheet().description());
}

void CDlgIspRegister::go_to(int id) {
  const RegDescription& description = desk_.sheet().description();
  const std::optional<std::size_t> reg = register_of_place(description, id);
  if (!reg) return;
  const RegEntry& entry = description.registers[*reg];
  const int row = entry.index_in_category;
  category_->setCurrentIndex(entry.category);
  const QModelIndex shown = sorted_->mapFromSource(list_model_->index(row, 0));
  list_->selectRow(shown.row());
  list_->scrollTo(shown);
  value_->setFocus(Qt::ShortcutFocusReason);
}

}  // namespace qv5123
