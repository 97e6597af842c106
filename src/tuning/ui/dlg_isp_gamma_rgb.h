#pragma once

#include <QButtonGroup>
#include <QDoubleSpinBox>
#include <QPlainTextEdit>

#include <functional>
#include <optional>
#include <string>

#include "tuning/gamma_desk.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/gamma_chart_view.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The gamma page: the three end curves, point by point or from an exponent, beside the front curve.
class CDlgIspGammaRgb : public TuningDialog, private GammaDesk::View {
  Q_OBJECT

 public:
  explicit CDlgIspGammaRgb(PageHost& host);

  bool save_writes_file() const override { return true; }

 private:
  QWidget* make_channel_row();
  QWidget* make_gamma_row();
  QWidget* make_front_row();
  QWidget* make_message_row();
  QWidget* make_point_groups();
  void add_channel(QLayout* row, GammaChannel channel);
  void add_point_row(QGridLayout* front, QGridLayout* end, std::size_t point);
  QSpinBox* make_point(GammaCurveId id, std::size_t point);
  QString end_registers() const;
  void show_more(bool more);

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_marks(const std::vector<ValueMark>& marks) override;
  void show_file();
  std::optional<GammaCurve> chip_curve(GammaCurveId id, const std::vector<ValueMark>& marks) const;
  void show_moved(const GammaHit& points) override;
  void add_message(const std::string& text) override;

  GammaDesk desk_;
  FieldEdits edits_;
  GammaChartView* chart_;
  QButtonGroup* channels_;
  QWidget* front_row_;
  QPlainTextEdit* messages_;
};

}  // namespace qv5123
