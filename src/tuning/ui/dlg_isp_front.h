#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QPushButton>

#include <functional>

#include "tuning/bit_editor.h"
#include "tuning/front_desk.h"
#include "tuning/raw_access_desk.h"
#include "tuning/script_player.h"
#include "tuning/service_area.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The ISP tune page: the chip's basic video settings, raw access to its registers, and a service area that
/// stays out of sight until it is asked for. Opening it reads the chip.
class CDlgIspFront : public TuningDialog, private DeskView {
  Q_OBJECT

 public:
  explicit CDlgIspFront(PageHost& host);

  // Only the page's own buttons store its values, and only its opening reads them back.
  void save_to_user_data() override {}
  void put_values(UserDataImage&) const override {}
  void read_back() override {}
  void reload_from_user_data() override { desk_.follow_file(); }
  void chosen_again() override { desk_.start_load(); }

 protected:
  /// Another page takes the place of this one.
  void hideEvent(QHideEvent* event) override;

 private:
  QLayout* make_settings();
  QWidget* make_video_group();
  QWidget* make_tdn_group();
  QLayout* make_polarity_row();
  QWidget* make_clamp_group();
  QWidget* make_task_column();
  QWidget* make_flag_group();
  QLayout* make_chip_row();

  /// `caption` where the field's own does not serve as the label.
  QComboBox* add_list(QGridLayout* grid, int row, const int& value, const QString& caption = {});
  void add_number(QGridLayout* grid, int row, const int& value);
  QCheckBox* make_flag(bool FrontFlags::*flag);
  /// Uses the control that sends the field.
  std::function<void()> sender(const FieldInfo& info);

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_marks(const std::vector<ValueMark>& marks) override;
  void fit_tdn_list();

  FrontDesk desk_;
  ServiceArea area_;
  BitEditor bit_editor_;
  RawAccessDesk raw_access_;
  ScriptPlayer player_;
  FieldEdits edits_;
  QComboBox* tdn_mode_ = nullptr;
  QPushButton* minus_ = nullptr;
  QPushButton* plus_ = nullptr;
  QPushButton* load_isp_ = nullptr;
  QWidget* service_box_ = nullptr;
};

}  // namespace qv5123
