#pragma once

#include <QButtonGroup>

#include <array>

#include "tuning/awb_desk.h"
#include "tuning/ui/awb_chart_view.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The AWB page: the six lines that tell white from colour, and the patches that the camera measured.
class CDlgIspAwb : public TuningDialog, private AwbDesk::View, private PickerDesk::View {
  Q_OBJECT

 public:
  explicit CDlgIspAwb(PageHost& host,
                      std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());

  bool save_writes_file() const override { return true; }
  Traffic leave() override { return desk_.leave(); }

 private:
  QWidget* make_line_group();
  QWidget* make_navigation_group();
  QWidget* make_measuring_group();
  QWidget* make_file_group();
  QWidget* make_patch_group();
  void add_line_row(QGridLayout* grid, AwbControl line);
  void add_patch_row(QGridLayout* grid, std::size_t row);
  QPushButton* make_write_button(const QString& caption, RegisterWrite write);

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_measuring() override;
  void show_picker() override { show_keys(); }
  void show_keys() override;
  void show_marks(const std::vector<ValueMark>& marks) override { edits_.show_marks(marks); }
  void redraw() { chart_->show_values(desk_.values()); }

  AwbDesk desk_;
  FieldEdits edits_;
  AwbChartView* chart_;
  QButtonGroup* choice_;
  QCheckBox* picker_ = nullptr;
  QPushButton* all_ = nullptr;
  QPushButton* get_color_ = nullptr;
};

}  // namespace qv5123
