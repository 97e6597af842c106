#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "state/comparison.h"
#include "state/write_history.h"

class QAbstractButton;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableView;

namespace qv5123 {

class CompareModel;
class FurtherColumnBox;

/// The page "Compare": every value of the tuning pages as page, chip and setting file have it, beside a
/// second file or what the chip held earlier. Chosen ones go into their pages, or from there to the chip.
class ComparePage final : public QWidget, public Page {
  Q_OBJECT

 public:
  struct Surroundings {
    PageHost& host;
    ValueStates& states;
    /// Null where no run's writes are kept.
    std::function<const WriteHistory*()> history;
    /// Opens a tuning page that was not opened yet, behind this one, and waits until it has read itself.
    std::function<Task<>(std::size_t page)> open_page;
    /// The user wants to choose a moment of the journal of writes; compare_with() follows.
    std::function<void()> choose_moment;
  };

  explicit ComparePage(Surroundings surroundings, QWidget* parent = nullptr);

  CompareModel& model() { return *model_; }
  /// Shows these in the further column.
  void compare_with(std::optional<OtherValues> values);

  /// "Read all from ISP".
  void read_back() override;
  bool loading() const override { return reading_.running(); }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* make_bar();
  void make_table();
  QWidget* make_reading();
  QWidget* make_buttons();
  QPushButton* add_button(QWidget* bar, const char* text, const char* tool_tip,
                          std::function<void()> clicked);
  void filter();
  void look_again();
  void show_counts();
  Task<> read_all();
  void show_reading(std::optional<std::size_t> page);
  Task<> take(Place from, std::string what);
  Task<> send();
  Task<> save();
  void copy();
  /// The chosen values, as the comparison counts them, and back.
  std::vector<std::size_t> chosen() const;
  void choose(const std::vector<std::size_t>& values);
  /// The same; all that are shown where none is chosen.
  std::vector<std::size_t> chosen_or_all() const;

  const Surroundings surroundings_;
  CompareModel* model_ = nullptr;
  QLineEdit* words_ = nullptr;
  QComboBox* show_ = nullptr;
  FurtherColumnBox* further_ = nullptr;
  QTableView* table_ = nullptr;
  QPushButton* read_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* counts_ = nullptr;
  std::vector<QAbstractButton*> on_chosen_;  ///< what needs chosen values
  std::vector<std::size_t> kept_choice_;     ///< while the rows become others
  Flow reading_;
  Flow working_;
};

}  // namespace qv5123
