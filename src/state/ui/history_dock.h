#pragma once

#include <QDockWidget>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/background.h"
#include "console/prompts.h"
#include "state/write_history.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace qv5123 {

class HistoryModel;

/// The dock "History": what left for the chip, in this run or an earlier one, with a filter; to copy, and to
/// save as a file.
class HistoryDock final : public QDockWidget {
  Q_OBJECT

 public:
  struct Surroundings {
    Prompts& prompts;
    Background& files;
    Scheduler& scheduler;
    /// A line for the status bar, and whether it is of a failure.
    std::function<void(bool failure, const std::string& text)> say;
    /// Goes back to a moment that `when` names: to what the chip was told until then. So many writes behind
    /// it have no names.
    std::function<void(KnownValues then, std::size_t unnamed, std::string when)> back;
    /// Compares with that moment.
    std::function<void(const KnownValues& then, const std::string& when)> compare;
  };

  /// The history must outlive the dock.
  HistoryDock(WriteHistory& history, Surroundings surroundings, QWidget* parent = nullptr);
  ~HistoryDock() override;

  /// There once the dock was to be shown.
  HistoryModel& model() { return *model_; }
  /// Opens a journal's file in place of this run's.
  void open_file(std::filesystem::path file);

  void setVisible(bool visible) override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void make_content();
  QWidget* make_bar();
  QWidget* make_buttons();
  void make_table();
  void choose_source(int index);
  Task<> list_runs();
  Task<> open(std::filesystem::path file);
  Task<> choose_file();
  Task<> save(std::size_t format);
  Task<> copy();
  Task<> go_back();
  Task<> compare();
  /// The moment when the one selected write had left; nothing where not one is selected.
  struct Moment {
    KnownValues known;
    std::size_t unnamed = 0;
    std::string when;
  };
  Task<std::optional<Moment>> moment();
  void offer_back();
  void show_own();
  void fill_sources(const std::vector<WriteJournalFiles::Run>& runs);
  void show_source(const QString& name, const QString& file);
  void show_opened(std::filesystem::path file, OpenedJournal opened);
  void filter();
  void look_on();
  void show_count();
  /// Writes that are shown, for who looks at them in the background.
  struct Shown {
    WriteJournal journal;
    std::vector<std::size_t> places;
  };
  /// What is selected; all that is shown where nothing is.
  Shown shown() const;

  WriteHistory& history_;
  const Surroundings surroundings_;
  HistoryModel* model_ = nullptr;
  QComboBox* source_ = nullptr;
  QLineEdit* words_ = nullptr;
  QCheckBox* questions_ = nullptr;
  QTableView* table_ = nullptr;
  QLabel* count_ = nullptr;
  QPushButton* back_ = nullptr;
  QPushButton* compare_ = nullptr;
  std::unique_ptr<WriteJournal> opened_;  ///< an earlier run's, while that is shown
  Flow listing_;
  Flow opening_;
  Flow saving_;
  Flow copying_;
  Flow going_back_;
};

}  // namespace qv5123
