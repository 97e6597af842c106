#include "state/ui/compare_page.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "base/atomic_file.h"
#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "console/slow_write.h"
#include "state/all_pages_read.h"
#include "state/ui/compare_model.h"
#include "state/ui/further_column_box.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {
namespace {

using Show = CompareFilter::Show;

struct ShowEntry {
  const char* text;
  Show show;
  Place one = Place::page;
  Place two = Place::chip;
};
constexpr std::array kShows{
    ShowEntry{"Differences", Show::differences},
    ShowEntry{"All values", Show::all},
    ShowEntry{"Page and chip differ", Show::between, Place::page, Place::chip},
    ShowEntry{"Page and file differ", Show::between, Place::page, Place::file},
    ShowEntry{"Chip and file differ", Show::between, Place::chip, Place::file},
    ShowEntry{"Page and further column differ", Show::between, Place::page, Place::other},
    ShowEntry{"Chip and further column differ", Show::between, Place::chip, Place::other},
    ShowEntry{"File and further column differ", Show::between, Place::file, Place::other}};

constexpr std::array kWidths{64, 150, 190, 84, 84, 84, 84};
/// Of a list, in characters: longer entries are cut.
constexpr int kListWidth = 16;

FileChoice csv_choice() {
  FileChoice choice;
  choice.filter = "CSV (*.csv)|*.csv|All Files (*.*)|*.*||";
  choice.default_extension = "csv";
  choice.initial_name = "compare.csv";
  choice.title = "Save the values that are compared";
  choice.kind = "compare";
  return choice;
}

QWidget* make_row(QWidget* parent) {
  auto* bar = new QWidget(parent);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  return bar;
}

void set_up_list(QComboBox* list, const char* name, const char* tool_tip) {
  list->setAccessibleName(name);
  list->setToolTip(tool_tip);
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list->setMinimumContentsLength(kListWidth);
}

std::size_t count_of(const std::vector<PageValues>& pages) {
  std::size_t count = 0;
  for (const PageValues& page : pages) count += page.values.size();
  return count;
}

}  // namespace

ComparePage::ComparePage(Surroundings surroundings, QWidget* parent)
    : QWidget(parent), surroundings_(std::move(surroundings)) {
  auto* rows = new QVBoxLayout(this);
  model_ = new CompareModel(surroundings_.states, this);
  rows->addWidget(make_bar());
  make_table();
  rows->addWidget(table_, 1);
  rows->addWidget(make_buttons());
  rows->addWidget(make_reading());
  surroundings_.states.on_change([this, self = QPointer<ComparePage>(this)] {
    if (self && isVisible()) look_again();
  });
  filter();
}

QPushButton* ComparePage::add_button(QWidget* bar, const char* text, const char* tool_tip,
                                     std::function<void()> clicked) {
  auto* button = push_button(text, tool_tip, bar);
  connect(button, &QPushButton::clicked, this, std::move(clicked));
  bar->layout()->addWidget(button);
  return button;
}

QWidget* ComparePage::make_bar() {
  QWidget* bar = make_row(this);
  words_ = new QLineEdit(bar);
  words_->setPlaceholderText("Search");
  words_->setAccessibleName("Search");
  words_->setToolTip("Only values whose page, name or caption hold all of these words");
  words_->setClearButtonEnabled(true);
  connect(words_, &QLineEdit::textChanged, this, &ComparePage::filter);
  show_ = new QComboBox(bar);
  set_up_list(show_, "Show", "Which values are shown");
  for (const ShowEntry& entry : kShows) show_->addItem(entry.text);
  connect(keep_choice(show_), &QComboBox::currentIndexChanged, this, &ComparePage::filter);
  further_ = new FurtherColumnBox(
      {surroundings_.host, surroundings_.states, surroundings_.history, surroundings_.choose_moment,
       [this](std::optional<OtherValues> values) { compare_with(std::move(values)); }},
      bar);
  set_up_list(further_, "Further column",
              "One more column: a second setting file, or what the chip held earlier");
  bar->layout()->addWidget(words_);
  bar->layout()->addWidget(show_);
  auto* beside = new QLabel("Beside it", bar);
  beside->setBuddy(further_);
  bar->layout()->addWidget(beside);
  bar->layout()->addWidget(further_);
  return bar;
}

void ComparePage::make_table() {
  table_ = new QTableView(this);
  table_->setAccessibleName("Values");
  table_->setToolTip(
      "Every value of the tuning pages; bold where it is not as in the first place that has it");
  table_->setModel(model_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setTabKeyNavigation(false);
  table_->setWordWrap(false);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  for (std::size_t column = 0; column < kWidths.size(); ++column)
    table_->setColumnWidth(static_cast<int>(column), kWidths[column]);
  QHeaderView* header = keep_choice(table_->horizontalHeader());
  header->setAccessibleName("Columns of the values");
  header->setSectionResizeMode(static_cast<int>(CompareModel::Column::caption), QHeaderView::Stretch);
  auto* copy = new QAction("Copy", table_);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, &ComparePage::copy);
  table_->addAction(copy);
  table_->setContextMenuPolicy(Qt::ActionsContextMenu);
  connect(model_, &QAbstractItemModel::modelAboutToBeReset, this, [this] { kept_choice_ = chosen(); });
  connect(model_, &QAbstractItemModel::modelReset, this, [this] {
    choose(kept_choice_);
    show_counts();
  });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ComparePage::show_counts);
}

QWidget* ComparePage::make_buttons() {
  QWidget* bar = make_row(this);
  const auto start = [this](Task<> task) {
    if (!working_.running()) working_.start(std::move(task));
  };
  on_chosen_ = {
      add_button(bar, "Chip -> Page", "Puts what the chip holds of the chosen values into their pages",
                 [this, start] { start(take(Place::chip, "Chip -> Page")); }),
      add_button(bar, "File -> Page",
                 "Puts what the setting file holds of the chosen values into their pages",
                 [this, start] { start(take(Place::file, "File -> Page")); }),
      add_button(bar, "Further -> Page",
                 "Puts what the further column holds of the chosen values into their pages",
                 [this, start] { start(take(Place::other, "Further -> Page")); }),
      add_button(
          bar, "Page -> Chip...",
          "Sends the chosen values of the pages, each as its own control does; tells before how much that is",
          [this, start] { start(send()); })};
  static_cast<QHBoxLayout*>(bar->layout())->addStretch(1);
  add_button(bar, "Copy", "Copies the chosen values as text; all that are shown where none is chosen",
             [this] { copy(); });
  add_button(bar, "Save CSV...",
             "Saves the chosen values as a table; all that are shown where none is chosen",
             [this, start] { start(save()); });
  return bar;
}

QWidget* ComparePage::make_reading() {
  QWidget* bar = make_row(this);
  read_ = add_button(bar, "Read all from ISP",
                     "Reads the six tuning pages from the chip; the pages stay as they are",
                     [this] { read_back(); });
  mark_command(read_, kLoadCommand);
  cancel_ = add_button(bar, "Cancel", "Ends the reading", [this] {
    reading_.cancel();
    show_reading(std::nullopt);
    surroundings_.host.show_status("Reading cancelled");
  });
  progress_ = new QProgressBar(bar);
  progress_->setAccessibleName("Pages read");
  progress_->setRange(0, static_cast<int>(surroundings_.states.pages()));
  counts_ = new QLabel(bar);
  counts_->setObjectName("value-count");
  counts_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto* row = static_cast<QHBoxLayout*>(bar->layout());
  row->addWidget(progress_, 1);
  row->addWidget(counts_, 1);
  show_reading(std::nullopt);
  return bar;
}

void ComparePage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  look_again();
  further_->look_for_runs();
}

void ComparePage::filter() {
  const ShowEntry& entry = kShows[static_cast<std::size_t>(show_->currentIndex())];
  model_->set_filter({from_qt(words_->text()), entry.show, entry.one, entry.two});
}

void ComparePage::look_again() {
  model_->look_again();
  show_counts();
}

void ComparePage::show_counts() {
  if (!counts_) return;
  const std::size_t count = chosen().size();
  const QString shown =
      QString("%1 of %2 values").arg(model_->values().size()).arg(model_->comparison().size());
  counts_->setText(count == 0 ? shown : shown + QString(", %1 chosen").arg(count));
  for (QAbstractButton* button : on_chosen_) button->setEnabled(count > 0);
}

void ComparePage::compare_with(std::optional<OtherValues> values) {
  further_->show_title(values ? std::optional(values->title) : std::nullopt);
  model_->set_other(std::move(values));
}

// Reading

void ComparePage::read_back() {
  if (!reading_.running()) reading_.start(read_all());
}

Task<> ComparePage::read_all() {
  const std::vector<std::string> failed = co_await read_all_pages(
      surroundings_.host, surroundings_.states, [this](std::size_t page) { show_reading(page); });
  show_reading(std::nullopt);
  const std::string text = pages_read_text(surroundings_.states.pages(), failed);
  if (failed.empty())
    surroundings_.host.show_status(text);
  else
    surroundings_.host.show_failure(text);
}

void ComparePage::show_reading(std::optional<std::size_t> page) {
  read_->setEnabled(!page);
  cancel_->setEnabled(page.has_value());
  progress_->setVisible(page.has_value());
  if (!page) return;
  progress_->setFormat(to_qt(surroundings_.states.page_name(*page)) + ", %v of %m");
  progress_->setValue(static_cast<int>(*page) + 1);
}

// What is chosen

std::vector<std::size_t> ComparePage::chosen() const {
  std::vector<std::size_t> values;
  for (const QItemSelectionRange& range : table_->selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      values.push_back(model_->values()[static_cast<std::size_t>(row)]);
  std::sort(values.begin(), values.end());
  return values;
}

std::vector<std::size_t> ComparePage::chosen_or_all() const {
  std::vector<std::size_t> values = chosen();
  return values.empty() ? model_->values() : values;
}

void ComparePage::choose(const std::vector<std::size_t>& values) {
  QItemSelection selection;
  for (int row = 0; row < model_->rowCount(); ++row) {
    if (!std::binary_search(values.begin(), values.end(), model_->values()[static_cast<std::size_t>(row)]))
      continue;
    selection.select(model_->index(row, 0), model_->index(row, model_->columnCount() - 1));
  }
  table_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

Task<> ComparePage::take(Place from, std::string what) {
  const std::vector<PageValues> pages = values_to_take(model_->comparison(), chosen(), from);
  if (pages.empty()) {
    surroundings_.host.show_status(what + ": the pages hold that already, or nothing is known");
    co_return;
  }
  for (const PageValues& page : pages) co_await surroundings_.open_page(page.page);
  // Without a wait between them they are one step to undo.
  for (const PageValues& page : pages)
    if (TuningDesk* desk = surroundings_.states.desk(page.page)) desk->take_values(what, page.values);
  surroundings_.host.show_status(what + ": " + counted(count_of(pages), "value"));
}

Task<> ComparePage::send() {
  const ValuesToSend values = values_to_send(model_->comparison(), chosen());
  if (values.pages.empty()) {
    surroundings_.host.show_status(values.unopened > 0
                                       ? "Page -> Chip: the pages of what is chosen hold nothing yet"
                                       : "Page -> Chip: nothing that is chosen can be sent alone");
    co_return;
  }
  SendingSum sum{.frame = surroundings_.host.link().health().frame_time()};
  for (const PageValues& page : values.pages)
    sum.add(surroundings_.states.desk(page.page)->own_traffic(page.fields()));
  Question question = careful_question(sending_question(values, sum), "Page -> Chip");
  const Answer answer = co_await surroundings_.host.prompts().ask(std::move(question));
  if (answer != Answer::yes) co_return;
  for (const PageValues& page : values.pages)
    if (TuningDesk* desk = surroundings_.states.desk(page.page))
      desk->send_values("Page -> Chip", page.fields(), false);
}

void ComparePage::copy() {
  const std::string text = comparison_as_text(model_->comparison(), chosen_or_all());
  QApplication::clipboard()->setText(to_qt(text));
}

Task<> ComparePage::save() {
  // What is shown now, not what is once the file is chosen.
  const std::string text = comparison_as_csv(model_->comparison(), chosen_or_all());
  const auto path = co_await surroundings_.host.prompts().choose_save(csv_choice());
  if (!path) co_return;
  std::function<FileResult()> work = [text, path = *path] { return write_file_atomically(path, text); };
  const FileResult written = co_await write_in_background(surroundings_.host, *path, std::move(work));
  if (written.ok())
    surroundings_.host.show_status(path_text(path->filename()) + ": saved");
  else
    surroundings_.host.show_failure(written.text);
}

}  // namespace qv5123
