#pragma once

#include <QBoxLayout>
#include <QLineEdit>

#include <array>
#include <vector>

#include "base/ui/findable.h"
#include "base/ui/folding_page.h"
#include "tuning/matrix_desk.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/matrix_fit_box.h"
#include "tuning/ui/patch_grid.h"
#include "tuning/ui/picker_box.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The linear matrix page: measures the patches of the chart, fits the colour correction matrix to them, and
/// keeps one for each video mode and light source. Where it is narrow the camera's side goes below the
/// patches.
class CDlgIspMatrix : public TuningDialog,
                      public ChoosesValues,
                      public FoldingPage,
                      private MatrixDesk::View {
  Q_OBJECT

 public:
  explicit CDlgIspMatrix(PageHost& host,
                         std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());

  void chosen_again() override { show_measurements(); }
  Traffic leave() override { return desk_.leave(); }
  void choose_value(std::size_t field) override;
  QSize usual_size() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  PickerBox* make_picker();
  QLayout* make_chart_row();
  QWidget* make_file_buttons();
  QWidget* make_light_group();
  QLayout* make_light_row();
  QLayout* make_mode_row();
  void choose_copies();
  QWidget* make_calculation_group();
  QLayout* make_ratio_row();
  QWidget* make_matrix_group();
  void add_matrix_row(QGridLayout* grid, int row);
  QLineEdit* make_code(int row, int column);

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_marks(const std::vector<ValueMark>& marks) override;
  void mark_codes();
  void show_measurements() override;
  bool in_view() const override { return isVisible(); }
  void show_typing() override;
  void show_codes() override;
  void show_run() override;
  void show_report() override;
  void allow_switch(bool allowed) override { picker_->setEnabled(allowed); }

  MatrixDesk desk_;
  QBoxLayout* columns_;
  std::vector<ValueMark> marks_;  // by field; empty while nobody keeps account
  QButtonGroup* light_;
  QComboBox* mode_;
  QSpinBox* patch_step_;
  PickerBox* picker_;
  QPushButton* corner_;
  QPushButton* all_;
  PatchGrid* patches_;
  MatrixFitBox* fit_;
  QCheckBox* manual_;
  std::array<std::array<QLineEdit*, 3>, kMatrixRows> codes_{};
};

}  // namespace qv5123
