#pragma once

#include <QComboBox>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "state/comparison.h"
#include "state/write_history.h"

namespace qv5123 {

/// The list of what a comparison can have in its further column: nothing, a second setting file, a moment of
/// the journal of writes, the end of an earlier run.
class FurtherColumnBox final : public QComboBox {
  Q_OBJECT

 public:
  struct Surroundings {
    PageHost& host;
    ValueStates& states;
    /// Null where no run's writes are kept.
    std::function<const WriteHistory*()> history;
    /// The user wants to choose a moment of the journal of writes elsewhere.
    std::function<void()> choose_moment;
    /// What the user has chosen.
    std::function<void(std::optional<OtherValues>)> chosen;
  };

  explicit FurtherColumnBox(Surroundings surroundings, QWidget* parent = nullptr);

  /// What is in the column now; nothing when that is empty.
  void show_title(std::optional<std::string> title);
  /// Looks for the earlier runs.
  void look_for_runs();

 private:
  void fill();
  void choose(int index);
  Task<> list_runs();
  Task<> choose_file();
  Task<> open_run(std::filesystem::path file, std::string title);

  const Surroundings surroundings_;
  std::optional<std::string> title_;
  std::vector<WriteJournalFiles::Run> runs_;
  Flow listing_;
  Flow opening_;
};

}  // namespace qv5123
