#pragma once

#include <QButtonGroup>
#include <QDoubleSpinBox>
#include <QPlainTextEdit>
#include <QRadioButton>

#include <array>

#include "tuning/gamma.h"
#include "tuning/ui/gamma_chart_view.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The gamma page: the three end curves, point by point or from an exponent, beside the front curve.
class CDlgIspGammaRgb : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgIspGammaRgb(PageHost& host);

  void save_to_user_data() override;
  void put_values(UserDataImage& image) const override { qv5123::save_to_user_data(values_, image); }
  bool save_writes_file() const override { return true; }
  void reload_from_user_data() override;
  void read_back() override { load_isp(); }

 private:
  QWidget* make_channel_row();
  QWidget* make_gamma_row();
  QWidget* make_front_row();
  QWidget* make_message_row();
  QWidget* make_point_groups();
  void add_point_row(QGridLayout* front, QGridLayout* end, std::size_t point);
  QSpinBox* make_point(GammaCurveId id, std::size_t point);
  QRadioButton* add_channel(QLayout* row, GammaChannel channel, const QString& caption);
  void connect_chart();
  void show_more(bool more);

  void show_values();
  void show_points();
  /// The points of a hit only: a drag moves them with every move of the mouse.
  void show_moved(const GammaHit& points);
  void log_selected_curves();

  void channel_clicked(int channel);
  void set_end();
  void set_front();
  void apply();
  void load_file();
  void load_isp();
  Task<> run_save();

  GammaValues values_;
  GammaChartView* chart_;
  std::array<std::array<QSpinBox*, kGammaPoints>, kGammaCurves> points_{};
  QButtonGroup* channels_;
  QDoubleSpinBox* gamma_value_;
  QDoubleSpinBox* front_value_;
  QCheckBox* itu_;
  QWidget* front_row_;
  QPlainTextEdit* messages_;
};

}  // namespace qv5123
