#pragma once

#include <QPlainTextEdit>

#include <string>

#include "tuning/lens_desk.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/lens_chart_view.h"
#include "tuning/ui/lens_field_view.h"
#include "tuning/ui/picker_box.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The lens shading page: sweeps the picker over a flat scene and fits what makes it even.
class CDlgIspLSC : public TuningDialog, private LensDesk::View {
  Q_OBJECT

 public:
  explicit CDlgIspLSC(PageHost& host,
                      std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());

  bool save_writes_file() const override { return true; }
  Traffic leave() override { return desk_.leave(); }

 private:
  PickerBox* make_picker();
  QString parameter_registers() const;
  QWidget* make_parameter_group();
  void add_parameter_row(QGridLayout* grid, int row, const PerColour& parameter, LensControl control);
  QWidget* make_ratio_row();
  QWidget* make_flicker_group();
  QWidget* make_log_row();

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_marks(const std::vector<ValueMark>& marks) override { edits_.show_marks(marks); }
  void show_calibration() override { chart_->refresh(); }
  void show_ratio();
  void show_field() override;
  void clear_log() override { log_->clear(); }
  void add_to_log(const std::string& text) override;
  void allow_switch(bool allowed) override { picker_->setEnabled(allowed); }

  LensDesk desk_;
  FieldEdits edits_;
  PickerBox* picker_;
  LensChartView* chart_;
  LensFieldView* field_;
  QPlainTextEdit* log_;
  QSpinBox* ratio_ = nullptr;
  QCheckBox* ntsc_;
  QCheckBox* pal_;
};

}  // namespace qv5123
