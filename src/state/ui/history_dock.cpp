#include "state/ui/history_dock.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "base/atomic_file.h"
#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/qt_text.h"
#include "console/slow_write.h"
#include "state/ui/history_model.h"
#include "state/way_back.h"
#include "state/write_export.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

struct ExportFormat {
  const char* name;
  const char* extension;
  std::string (*text)(const WriteRecords&);
};

constexpr std::array kFormats{ExportFormat{"Text", "txt", writes_as_text},
                              ExportFormat{"CSV", "csv", writes_as_csv},
                              ExportFormat{"JSON lines", "jsonl", writes_as_json_lines},
                              ExportFormat{"Register script", "regs", writes_as_script}};

constexpr int kOwnRun = 0;
/// Stands in the list where a file's path would; no path.
constexpr const char* kOtherFile = "?";
constexpr std::array kWidths{90, 70, 140, 220, 160, 90};

/// Takes a while for many writes.
std::string export_writes(const WriteJournal& journal, const std::vector<std::size_t>& places,
                          const ExportFormat& format) {
  WriteRecords records;
  records.reserve(places.size());
  for (const std::size_t place : places)
    if (auto record = read_journal_line(journal.line(place))) records.push_back(std::move(*record));
  return format.text(records);
}

FileChoice file_choice(const ExportFormat& format) {
  const std::string pattern = std::string("*.") + format.extension;
  FileChoice choice;
  choice.filter = std::string(format.name) + " (" + pattern + ")|" + pattern + "|All Files (*.*)|*.*||";
  choice.default_extension = format.extension;
  choice.initial_name = std::string("history.") + format.extension;
  choice.title = "Export the writes that are shown";
  choice.kind = "history";
  return choice;
}

QString run_text(const WriteJournalFiles::Run& run) {
  constexpr std::uintmax_t kKilobyte = 1024;
  return QStringLiteral("%1 UTC, %2 KB").arg(to_qt(run.start)).arg((run.bytes + kKilobyte - 1) / kKilobyte);
}

}  // namespace

HistoryDock::HistoryDock(WriteHistory& history, Surroundings surroundings, QWidget* parent)
    : QDockWidget("History", parent), history_(history), surroundings_(std::move(surroundings)) {
  setObjectName("history");
  history_.tell_of_notes([this] { look_on(); });
}

// Not before it is wanted: a start would take a quarter longer.
void HistoryDock::make_content() {
  auto* content = new QWidget(this);
  auto* rows = new QVBoxLayout(content);
  make_table();
  rows->addWidget(make_bar());
  rows->addWidget(table_, 1);
  rows->addWidget(make_buttons());
  setWidget(content);
  show_own();
}

HistoryDock::~HistoryDock() {
  history_.tell_of_notes({});
}

QWidget* HistoryDock::make_bar() {
  auto* bar = new QWidget(this);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  source_ = new QComboBox(bar);
  source_->setAccessibleName("Run");
  source_->setToolTip("Whose writes are shown: this run's, an earlier one's, or those of a file");
  fill_sources({});
  on_choice(source_, [this](int index) { choose_source(index); });
  words_ = new QLineEdit(bar);
  words_->setPlaceholderText("Search");
  words_->setAccessibleName("Search");
  words_->setToolTip("Only writes that hold all of these words: page, control, names, numbers, registers");
  words_->setClearButtonEnabled(true);
  connect(words_, &QLineEdit::textChanged, this, &HistoryDock::filter);
  questions_ = new QCheckBox("Questions", bar);
  questions_->setToolTip("Also what only asks the chip for something");
  connect(questions_, &QCheckBox::toggled, this, &HistoryDock::filter);
  row->addWidget(source_);
  row->addWidget(words_, 1);
  row->addWidget(questions_);
  return bar;
}

void HistoryDock::make_table() {
  table_ = new QTableView(this);
  table_->setAccessibleName("Writes");
  model_ = new HistoryModel(this);
  table_->setModel(model_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setWordWrap(false);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  table_->horizontalHeader()->setStretchLastSection(true);
  for (int column = 0; column < HistoryModel::kColumns; ++column)
    table_->setColumnWidth(column, kWidths[static_cast<std::size_t>(column)]);
  auto* copy = new QAction("Copy", table_);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, [this] { copying_.start(this->copy()); });
  table_->addAction(copy);
  table_->setContextMenuPolicy(Qt::ActionsContextMenu);
  connect(model_, &QAbstractItemModel::rowsInserted, this, &HistoryDock::show_count);
  connect(model_, &QAbstractItemModel::rowsRemoved, this, &HistoryDock::show_count);
  connect(model_, &QAbstractItemModel::modelReset, this, &HistoryDock::show_count);
}

QWidget* HistoryDock::make_buttons() {
  auto* bar = new QWidget(this);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  count_ = new QLabel(bar);
  count_->setObjectName("write-count");
  auto* copy = new QPushButton("Copy", bar);
  copy->setToolTip("Copies the selected writes as text; all that are shown where none is selected");
  connect(copy, &QPushButton::clicked, this, [this] { copying_.start(this->copy()); });
  auto* save = new QPushButton("Save as", bar);
  save->setToolTip("Saves the selected writes in a file; all that are shown where none is selected");
  auto* formats = new QMenu(save);
  for (std::size_t i = 0; i < kFormats.size(); ++i) {
    QAction* format = formats->addAction(QString("%1...").arg(kFormats[i].name));
    connect(format, &QAction::triggered, this, [this, i] {
      if (!saving_.running()) saving_.start(this->save(i));
    });
  }
  save->setMenu(formats);
  back_ = new QPushButton("Back to here...", bar);
  back_->setEnabled(false);
  back_->setToolTip("Shows what differs from when the selected write had left, and sends it when you agree");
  connect(back_, &QPushButton::clicked, this, [this] {
    if (!going_back_.running()) going_back_.start(go_back());
  });
  compare_ = new QPushButton("Compare", bar);
  compare_->setEnabled(false);
  compare_->setToolTip(
      "Shows what the chip held when the selected write had left, beside all that is known now");
  connect(compare_, &QPushButton::clicked, this, [this] {
    if (!going_back_.running()) going_back_.start(compare());
  });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &HistoryDock::offer_back);
  connect(model_, &QAbstractItemModel::modelReset, this, &HistoryDock::offer_back);
  row->addWidget(count_, 1);
  row->addWidget(compare_);
  row->addWidget(back_);
  row->addWidget(copy);
  row->addWidget(save);
  return bar;
}

// Before it has its place, which goes by the content.
void HistoryDock::setVisible(bool visible) {
  if (visible && !model_) make_content();
  QDockWidget::setVisible(visible);
}

void HistoryDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  if (history_.files() && !listing_.running()) listing_.start(list_runs());
}

Task<> HistoryDock::list_runs() {
  const std::vector<WriteJournalFiles::Run> runs = co_await history_.files()->others();
  const QString shown = source_->currentData().toString();
  const QString name = source_->currentText();
  fill_sources(runs);
  show_source(name, shown);
}

void HistoryDock::fill_sources(const std::vector<WriteJournalFiles::Run>& runs) {
  const QSignalBlocker quiet(source_);
  source_->clear();
  source_->addItem("This run");
  for (const WriteJournalFiles::Run& run : runs) source_->addItem(run_text(run), path_to_qt(run.file));
  source_->addItem("Other file...", QLatin1String(kOtherFile));
}

/// One that is not listed is put in.
void HistoryDock::show_source(const QString& name, const QString& file) {
  const QSignalBlocker quiet(source_);
  if (file.isEmpty()) return source_->setCurrentIndex(kOwnRun);
  if (source_->findData(file) < 0) source_->insertItem(kOwnRun + 1, name, file);
  source_->setCurrentIndex(source_->findData(file));
}

void HistoryDock::choose_source(int index) {
  const QString file = source_->itemData(index).toString();
  if (index == kOwnRun) {
    opening_.cancel();
    show_own();
  } else if (file == QLatin1String(kOtherFile)) {
    opening_.start(choose_file());
  } else {
    open_file(to_path(file));
  }
}

void HistoryDock::open_file(fs::path file) {
  opening_.start(open(std::move(file)));
}

Task<> HistoryDock::choose_file() {
  FileChoice choice;
  choice.filter = "Journals (*.journal)|*.journal|All Files (*.*)|*.*||";
  choice.title = "Open another run's journal of writes";
  choice.kind = "journal";
  const auto file = co_await surroundings_.prompts.choose_open(std::move(choice));
  if (file) {
    co_await open(*file);
  } else {
    show_own();
  }
}

Task<> HistoryDock::open(fs::path file) {
  std::function<OpenedJournal()> work = [file] { return open_journal_file(file); };
  OpenedJournal opened = co_await surroundings_.files.run<OpenedJournal>(std::move(work));
  show_opened(std::move(file), std::move(opened));
}

void HistoryDock::show_opened(fs::path file, OpenedJournal opened) {
  auto journal = std::make_unique<WriteJournal>(std::move(opened.journal));
  model_->show_journal(*journal);
  opened_ = std::move(journal);
  show_source(path_to_qt(file.filename()), path_to_qt(file));
  // In one message: another one would take its place.
  if (!opened.remarks.empty())
    surroundings_.say(true, path_text(file.filename()) + ": " + joined(opened.remarks, " "));
}

void HistoryDock::show_own() {
  model_->show_journal(history_.journal());
  opened_.reset();
  show_source({}, {});
  table_->scrollToBottom();
}

void HistoryDock::filter() {
  model_->set_filter({from_qt(words_->text()), questions_->isChecked()});
}

void HistoryDock::look_on() {
  if (!model_ || opened_) return;
  const QScrollBar* bar = table_->verticalScrollBar();
  const bool follows = bar->value() == bar->maximum();
  model_->look_on();
  if (follows) table_->scrollToBottom();
}

void HistoryDock::show_count() {
  const std::size_t all = model_->journal().size();
  count_->setText(QString("%1 of %2 writes").arg(model_->rowCount()).arg(all));
}

void HistoryDock::offer_back() {
  // Not row by row: all may be selected.
  const QItemSelection selected = table_->selectionModel()->selection();
  const bool one = selected.size() == 1 && selected.first().height() == 1;
  back_->setEnabled(one);
  compare_->setEnabled(one);
}

Task<std::optional<HistoryDock::Moment>> HistoryDock::moment() {
  const QModelIndexList selected = table_->selectionModel()->selectedRows();
  if (selected.size() != 1) co_return std::nullopt;
  const int row = selected.first().row();
  std::string when =
      from_qt(model_->index(row, static_cast<int>(HistoryModel::Column::time)).data().toString());
  // A long journal takes a while.
  std::function<Moment()> work = [journal = model_->journal(), count = model_->place(row) + 1, when] {
    return Moment{values_after(journal, count), unnamed_writes_after(journal, count), when};
  };
  co_return co_await surroundings_.files.run<Moment>(std::move(work));
}

Task<> HistoryDock::go_back() {
  std::optional<Moment> moment = co_await this->moment();
  if (moment) surroundings_.back(std::move(moment->known), moment->unnamed, std::move(moment->when));
}

Task<> HistoryDock::compare() {
  const std::optional<Moment> moment = co_await this->moment();
  if (moment) surroundings_.compare(moment->known, moment->when);
}

HistoryDock::Shown HistoryDock::shown() const {
  Shown shown{model_->journal(), {}};
  const auto add = [&](int first, int last) {
    for (int row = first; row <= last; ++row) shown.places.push_back(model_->place(row));
  };
  QItemSelection selected = table_->selectionModel()->selection();
  std::sort(selected.begin(), selected.end(), [](const auto& a, const auto& b) { return a.top() < b.top(); });
  for (const QItemSelectionRange& range : selected) add(range.top(), range.bottom());
  if (shown.places.empty()) add(0, model_->rowCount() - 1);
  return shown;
}

Task<> HistoryDock::copy() {
  std::function<std::string()> work = [shown = shown()] {
    return export_writes(shown.journal, shown.places, kFormats[0]);
  };
  const std::string text = co_await surroundings_.files.run<std::string>(std::move(work));
  QApplication::clipboard()->setText(to_qt(text));
}

Task<> HistoryDock::save(std::size_t format) {
  // What is chosen now, not what is once the file is.
  Shown shown = this->shown();
  const std::size_t count = shown.places.size();
  const auto path = co_await surroundings_.prompts.choose_save(file_choice(kFormats[format]));
  if (!path) co_return;
  std::function<FileResult()> work = [shown = std::move(shown), format, path = *path] {
    return write_file_atomically(path, export_writes(shown.journal, shown.places, kFormats[format]));
  };
  std::function<void(const std::string&)> slow = [this](const std::string& text) {
    surroundings_.say(true, text);
  };
  const FileResult written = co_await write_in_background(surroundings_.files, surroundings_.scheduler,
                                                          std::move(slow), *path, std::move(work));
  const std::string done = path_text(path->filename()) + ": " + std::to_string(count) +
                           (count == 1 ? " write saved" : " writes saved");
  surroundings_.say(!written.ok(), written.ok() ? done : written.text);
}

}  // namespace qv5123
