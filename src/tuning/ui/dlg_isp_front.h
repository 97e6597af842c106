#pragma once

#include <QBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "tuning/front.h"
#include "tuning/raw_access.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The ISP tune page: the chip's basic video settings, raw access to its registers, and a service area that
/// stays out of sight until it is asked for. Opening it reads the chip.
class CDlgIspFront : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgIspFront(PageHost& host);

  void chosen_again() override;

 protected:
  /// Another page takes the place of this one.
  void hideEvent(QHideEvent* event) override;

 private:
  /// The fields of one of the raw access groups.
  struct RawFields {
    QLineEdit* address = nullptr;
    QLineEdit* data = nullptr;
  };

  QWidget* make_video_group();
  QWidget* make_tdn_group();
  QLayout* make_polarity_row();
  QWidget* make_clamp_group();
  QWidget* make_task_column();
  QWidget* make_flag_group();
  QCheckBox* make_flag(FrontFlag flag);
  QWidget* make_bit_group();
  void add_bit(QGridLayout* grid, int number);
  QWidget* make_raw_group(Access access);
  QWidget* make_dump_group();
  QLayout* make_chip_row();
  QWidget* make_service_area();
  QWidget* make_userdata_group();
  QSpinBox* add_byte_row(QGridLayout* grid, int row, int highest, const QString& caption,
                         const QString& tooltip, FrontControl control);

  void load_from_isp();
  void fit_tdn_list();
  void read_controls();
  void show_values();
  void show_polarity();

  void use(FrontControl control);
  Task<> apply(ControlEffect effect);
  void set_polarity(int polarity);
  void set_flag(FrontFlag flag, bool checked);
  Task<> run_save();

  int raw_address(Access access) const;
  void click_bit(int number, bool set);
  void press_get_info();
  Task<> get_info(int address);
  void show_bits();
  void write_raw(Access access);
  void write_byte();
  void write_sensor();
  void dump();
  Task<> show_dump(int start, int end);
  Task<> read(Access access, int address, Batch request);
  void show_answer(Access access, int address, const std::string& reply);

  void reveal_service_area();
  Task<> set_parameter();
  void press_play();
  Task<> load_script();
  Task<std::optional<std::string>> read_script(std::filesystem::path path);
  Task<> play(std::string text);
  void append_text(const std::string& text);

  FrontValues values_;
  QComboBox *video_mode_, *colour_order_, *tdn_mode_, *wdr_state_;
  QSpinBox *delay_, *ir_on_off_, *led_dimmer_;
  QPushButton *minus_, *plus_, *load_isp_;
  std::array<QSpinBox*, kClamps.size()> clamp_{};
  std::array<QCheckBox*, kFrontFlagCount> flags_{};
  QCheckBox* color_suppress_;

  QLineEdit* bit_address_;
  /// By bit number; the radio "0", then the radio "1".
  std::array<std::array<QRadioButton*, 2>, 8> bits_{};
  std::uint8_t bit_byte_ = 0;
  ServiceGesture gesture_;
  /// By Access.
  std::array<RawFields, 3> raw_;
  QSpinBox* data_spin_;
  QLineEdit *dump_start_, *dump_end_;

  static constexpr char kPlayCaption[] = "Register File Load";

  QWidget* service_area_;
  QPlainTextEdit* text_;
  QComboBox* parameter_;
  QLineEdit* parameter_value_;
  QPushButton* play_;
  Flow script_;
};

}  // namespace qv5123
