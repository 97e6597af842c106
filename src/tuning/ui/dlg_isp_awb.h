#pragma once

#include <QButtonGroup>
#include <array>

#include "tuning/awb.h"
#include "tuning/ui/awb_chart_view.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The AWB page: the six lines that tell white from colour, and the patches that the camera measured.
class CDlgIspAwb : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgIspAwb(PageHost& host);

  void save_to_user_data() override;
  void put_values(UserDataImage& image) const override;
  bool save_writes_file() const override { return true; }
  void reload_from_user_data() override;
  void read_back() override { load_from_isp(); }

 private:
  QWidget* make_line_group();
  QWidget* make_navigation_group();
  QWidget* make_file_group();
  QWidget* make_patch_group();
  void add_line_row(QGridLayout* grid, int place);
  void add_patch_row(QGridLayout* grid, std::size_t row);
  QPushButton* make_write_button(const QString& caption, RegisterWrite write);

  AwbValues shown_values() const;
  void read_controls();
  void show_values();
  void redraw();
  void set_row(const AwbRow& row);
  void load_from_file();
  void load_from_isp();
  Task<> run_save();
  Task<> get_color(std::size_t patch);

  AwbValues values_;
  std::array<QSpinBox*, kAwbWordCount> words_{};
  std::array<std::array<QSpinBox*, 3>, kAwbPatchCount> patches_{};
  QButtonGroup* patch_choice_;
  AwbChartView* chart_;
  Flow color_;
};

}  // namespace qv5123
