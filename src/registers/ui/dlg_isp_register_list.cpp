// The register page's list: what it shows, what is chosen in it, and how it is gone to.
#include <QComboBox>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableView>
#include <algorithm>

#include "base/ui/page_marks.h"
#include "base/ui/reading_note.h"
#include "registers/ui/dlg_isp_register.h"
#include "registers/ui/hex_edits.h"
#include "registers/ui/register_columns.h"
#include "registers/ui/register_filter_bar.h"
#include "registers/ui/register_list_model.h"
#include "registers/ui/register_places.h"

namespace qv5123 {
namespace {

constexpr ColumnLayout kListColumns[] = {
    {"No.", 30, "2000"}, {"Addr", 50, "0xDDDD"}, {"Name", 120, ""}, {"Value", 50, "0xDD"}};

}  // namespace

void CDlgIspRegister::make_filter() {
  connect(filter_, &RegisterFilterBar::changed, this, &CDlgIspRegister::filter_list);
  connect(filter_, &RegisterFilterBar::favourites_taken, this, &CDlgIspRegister::filter_list);
  connect(filter_, &RegisterFilterBar::list_wanted, this, &CDlgIspRegister::go_to_list);
  connect(filter_, &RegisterFilterBar::favourite_clicked, this, &CDlgIspRegister::mark_favourite);
  connect(listed_, &QAbstractItemModel::rowsInserted, this, [this] {
    show_count();
    if (!showing_selection_ && listed_->active()) show_selection();
  });
}

void CDlgIspRegister::make_list() {
  list_model_ = new RegisterListModel(desk_.sheet(), favourites_, this);
  listed_ = new RegisterFilter(desk_.sheet(), favourites_, this);
  listed_->setSourceModel(list_model_);
  listed_->setSortRole(RegisterListModel::kSortRole);
  list_->setModel(listed_);
  list_->setAccessibleName("Registers");
  list_->setToolTip(
      "Registers of the category, or of all that the filter leaves; a selected one is read. A click on a "
      "heading sorts by it, a third one no more. Names of favourites are bold, and values that have "
      "changed.");
  list_->setSelectionBehavior(QAbstractItemView::SelectRows);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list_->setTabKeyNavigation(false);
  list_->setWordWrap(false);
  list_->setCornerButtonEnabled(false);
  list_->verticalHeader()->hide();
  list_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() + 6);
  list_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  make_columns();
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &CDlgIspRegister::follow_selection);
  connect(list_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    const RegisterSheet& sheet = desk_.sheet();
    if (sheet.current_row() < 0) return;
    const std::size_t current = sheet.register_of(static_cast<std::size_t>(sheet.current_row()));
    if (static_cast<std::size_t>(listed_->mapToSource(index).row()) == current) desk_.read();
  });
}

void CDlgIspRegister::make_columns() {
  const int margins = 2 * (list_->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list_) + 1) + 4;
  int width = list_->verticalScrollBar()->sizeHint().width() + 2 * list_->frameWidth();
  for (int column = 0; column < RegisterListModel::kColumns; ++column) {
    list_->setColumnWidth(column, column_width(kListColumns[column], *list_, margins));
    width += list_->columnWidth(column);
  }
  list_->setMinimumWidth(width);
  QHeaderView* header = keep_choice(list_->horizontalHeader());
  header->setAccessibleName("Columns of the list");
  header->setHighlightSections(false);
  header->setMinimumSectionSize(10);
  // Where there is no scroll bar, names have its room.
  header->setSectionResizeMode(RegisterListModel::kName, QHeaderView::Stretch);
  header->setSortIndicatorClearable(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  list_->setSortingEnabled(true);
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
    select_source_row(listed_->mapToSource(current).row());
  }
}

void CDlgIspRegister::select_source_row(int reg) {
  const auto chosen = static_cast<std::size_t>(reg);
  const RegEntry& entry = desk_.sheet().description().registers[chosen];
  // Several rows may be selected, of which one is current: then the selection is the user's.
  if (entry.category == desk_.sheet().category()) return desk_.select_row(entry.index_in_category);
  desk_.choose_register(chosen);
}

/// From the filter: its first row, unless the current one is there.
void CDlgIspRegister::go_to_list() {
  if (listed_->rowCount() == 0) return;
  list_->setFocus(Qt::ShortcutFocusReason);
  if (!list_->selectionModel()->hasSelection()) list_->selectRow(0);
}

void CDlgIspRegister::filter_list() {
  listed_->choose(filter_->words(), filter_->only());
  list_anew();
  show_selection();
  show_favourite();
}

void CDlgIspRegister::list_anew() {
  showing_selection_ = true;
  list_model_->reset();
  showing_selection_ = false;
  show_count();
}

void CDlgIspRegister::show_count() {
  filter_->show_count(listed_->active() ? std::optional(listed_->rowCount()) : std::nullopt);
}

void CDlgIspRegister::mark_favourite(bool on) {
  const RegisterSheet& sheet = desk_.sheet();
  if (sheet.current() >= sheet.description().registers.size()) return;
  favourites_.mark(sheet.description().registers[sheet.current()], on);
  list_model_->favourites_changed();
  listed_->look_again();
}

void CDlgIspRegister::show_favourite() {
  const RegisterSheet& sheet = desk_.sheet();
  const bool known = sheet.current() < sheet.description().registers.size();
  filter_->show_favourite(
      known ? std::optional(favourites_.has(sheet.description().registers[sheet.current()])) : std::nullopt);
}

void CDlgIspRegister::show_description() {
  const QSignalBlocker blocker(category_);
  for (const std::u16string& name : desk_.sheet().description().categories) {
    category_->addItem(shown_name(name));
  }
  listed_->take_description();
  list_anew();
}

void CDlgIspRegister::show_category() {
  const QSignalBlocker blocker(category_);
  category_->setCurrentIndex(desk_.sheet().category());
  if (listed_->active()) {
    list_model_->values_changed();  // the rows stay
  } else {
    listed_->take_category();
    list_anew();
  }
  show_age();
  // Not while another page is shown, whose keys it would take.
  if (isVisible()) list_->setFocus();
}

void CDlgIspRegister::show_value_of(std::size_t reg) {
  list_model_->value_changed(reg);
  listed_->look_again();
  show_age();
}

void CDlgIspRegister::show_values() {
  list_model_->values_changed();
  listed_->look_again();
  show_age();
}

void CDlgIspRegister::show_age() {
  const bool older = desk_.sheet().older_than_chip();
  show_reading_note(
      age_, older ? "older than the chip" : "",
      older ? "The chip was reset since the category was read; \"Load From ISP\" reads it again" : "");
}

/// The rows that belong to the address in its edit, in the model's order.
std::vector<int> CDlgIspRegister::selected_registers() const {
  const RegisterSheet& sheet = desk_.sheet();
  std::vector<int> registers;
  if (!listed_->active()) {
    for (const int row : sheet.selected_rows())
      registers.push_back(static_cast<int>(sheet.register_of(static_cast<std::size_t>(row))));
    return registers;
  }
  // The list has rows of all categories.
  const int address = ParseRegAddress(sheet.address_text());
  for (std::size_t reg = 0; reg < sheet.description().registers.size(); ++reg)
    if (reg == sheet.current() || (sheet.selected_rows().size() != 1 && sheet.cell_address(reg) == address))
      registers.push_back(static_cast<int>(reg));
  return registers;
}

void CDlgIspRegister::show_selection() {
  const RegisterSheet& sheet = desk_.sheet();
  const auto in_list = [this](int reg) { return list_model_->index(reg, 0); };
  // Rows that stand together are one range: the selection's cost grows with the square of its ranges.
  QItemSelection rows;
  const std::vector<int> selected = selected_registers();
  for (std::size_t i = 0; i < selected.size();) {
    const int first = selected[i];
    int last = first;
    while (++i < selected.size() && selected[i] == last + 1) ++last;
    rows.select(in_list(first), in_list(last));
  }
  showing_selection_ = true;
  QItemSelectionModel* selection = list_->selectionModel();
  selection->select(listed_->mapSelectionFromSource(rows),
                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  const QModelIndex current = std::ranges::count(selected, static_cast<int>(sheet.current())) == 0
                                  ? QModelIndex()
                                  : listed_->mapFromSource(in_list(static_cast<int>(sheet.current())));
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
  desk_.choose_register(*reg);
  // Where the filter leaves it out, its category is what it is looked at in.
  if (!list_->selectionModel()->hasSelection()) filter_->clear();
  value_->setFocus(Qt::ShortcutFocusReason);
}

}  // namespace qv5123
