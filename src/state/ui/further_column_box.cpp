#include "state/ui/further_column_box.h"

#include <QSignalBlocker>
#include <QTimer>
#include <utility>

#include "base/atomic_file.h"
#include "base/text.h"
#include "base/ui/controls.h"
#include "base/ui/qt_text.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

/// What an entry does, as its data; an earlier run's has the place in the list of runs.
constexpr int kNothing = -1;
constexpr int kShown = -2;
constexpr int kFile = -3;
constexpr int kMoment = -4;

FileChoice setting_choice() {
  FileChoice choice;
  choice.filter = kSettingFileFilter;
  choice.default_extension = kSettingFileExtension;
  choice.title = "Choose a setting file for the further column";
  choice.kind = kSettingFileExtension;
  return choice;
}

}  // namespace

FurtherColumnBox::FurtherColumnBox(Surroundings surroundings, QWidget* parent)
    : QComboBox(parent), surroundings_(std::move(surroundings)) {
  on_choice(this, [this](int index) { choose(index); });
  fill();
}

void FurtherColumnBox::show_title(std::optional<std::string> title) {
  title_ = std::move(title);
  fill();
}

void FurtherColumnBox::look_for_runs() {
  if (!listing_.running()) listing_.start(list_runs());
}

void FurtherColumnBox::fill() {
  const QSignalBlocker blocker(this);
  clear();
  addItem("Nothing else", kNothing);
  if (title_) addItem(to_qt(*title_), kShown);
  setCurrentIndex(count() - 1);
  addItem("Setting file...", kFile);
  if (surroundings_.history()) addItem("Moment of the History...", kMoment);
  for (std::size_t i = 0; i < runs_.size(); ++i)
    addItem("End of run " + to_qt(runs_[i].start) + " UTC", static_cast<int>(i));
}

Task<> FurtherColumnBox::list_runs() {
  const WriteHistory* history = surroundings_.history();
  if (history && history->files()) runs_ = co_await history->files()->others();
  fill();
}

void FurtherColumnBox::choose(int index) {
  const int what = itemData(index).toInt();
  if (what == kNothing) return surroundings_.chosen(std::nullopt);
  if (what == kFile) return opening_.start(choose_file());
  if (what >= 0) {
    const WriteJournalFiles::Run& run = runs_[static_cast<std::size_t>(what)];
    return opening_.start(open_run(run.file, "Run " + run.start));
  }
  if (what != kMoment) return;
  // Not within the list's own signal. Until something is there to be shown, what is shown stays.
  QTimer::singleShot(0, this, [this] { fill(); });
  surroundings_.choose_moment();
}

Task<> FurtherColumnBox::choose_file() {
  const auto path = co_await surroundings_.host.prompts().choose_open(setting_choice());
  // Until something is there to be shown, what is shown stays.
  fill();
  if (!path) co_return;
  const ReadSettings read = co_await read_setting_file(surroundings_.host.background(), *path);
  if (!read.result.ok()) surroundings_.host.show_failure(read.result.text);
  if (!read.oddity.empty()) surroundings_.host.show_failure(read.oddity);
  if (read.result.ok())
    surroundings_.chosen(values_in_file(surroundings_.states, read.image, path_text(path->filename())));
}

Task<> FurtherColumnBox::open_run(std::filesystem::path file, std::string title) {
  struct Opened {
    KnownValues known;
    std::vector<std::string> remarks;
  };
  std::function<Opened()> work = [file] {
    OpenedJournal opened = open_journal_file(file);
    return Opened{values_after(opened.journal, opened.journal.size()), std::move(opened.remarks)};
  };
  const Opened opened = co_await surroundings_.host.background().run<Opened>(std::move(work));
  // In one message: another one would take its place.
  if (!opened.remarks.empty())
    surroundings_.host.show_failure(path_text(file.filename()) + ": " + joined(opened.remarks, " "));
  surroundings_.chosen(values_in_journal(surroundings_.states, opened.known, std::move(title)));
}

}  // namespace qv5123
