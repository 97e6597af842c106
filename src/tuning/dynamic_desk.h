#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "console/prompts.h"
#include "tuning/dynamic.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The dynamic AE/AWB control page without its window.
class DynamicDesk final : public PageDesk<DynamicPage> {
 public:
  class View : public DeskView {
   public:
    /// A step was corrected.
    virtual void add_message(const std::string&) {}
  };
  DynamicDesk(DeskHost& host, UserDataImage& image);
  void attach(View& view);

  /// The light source whose values are edited, 0..2.
  std::size_t source() const { return source_; }
  void choose_source(std::size_t source);
  /// "Light source Sum :", the bar.
  void move_light_source_bar(int bar);

  /// The bank whose steps are edited.
  std::optional<BankId> bank() const { return selected_bank(values_.ir_led, values_.video_mode); }
  /// The place in the model's fields of its cell; nothing while there is no bank.
  std::optional<std::size_t> cell(std::size_t row, std::size_t step) const;
  void switch_ir_led(bool on);
  void choose_video_mode(int index);
  /// Not while the chip has said that it is the case of the IR-LED.
  bool video_mode_enabled() const { return video_mode_enabled_; }

  void set_mirror(bool on, PageHost& files) { turn(kMirror, on, files); }
  void set_flip(bool on, PageHost& files) { turn(kFlip, on, files); }
  /// "None".
  void turn_nothing(PageHost& files) { turn(kMirror | kFlip, false, files); }

  /// "Set" of a value; `index` as in control_number(). The gains ask first.
  void set(DynamicControl control, std::size_t index, Prompts& prompts);
  /// "File/Flash Save".
  Task<> save(Prompts& prompts);

  /// "Set" of "Decision Value" and the full save send three bytes of the program's own image with it.
  Traffic control_traffic(int control) const override;
  std::vector<WriteNote::Value> control_values(int control) const override;

 protected:
  std::string unread_saved() const override;

 private:
  FullSave make_save() override;
  std::chrono::milliseconds settling() const override { return kFlashStoreTime; }
  void limit(const std::vector<std::size_t>& fields) override;
  Traffic values_traffic(const std::vector<std::size_t>& fields) const override;
  DynamicFullSave corrected_save();
  std::vector<WriteNote::Value> save_values() const override;
  std::vector<WriteNote::Value> without_unknown_sources(std::vector<WriteNote::Value> values) const;
  void taken_reply() override { video_mode_enabled_ = !values_.ir_led; }
  void turn(int flags, bool on, PageHost& files);
  void show_bank();
  Task<> send_orientation(PageHost& files);
  Task<> set_gain(std::size_t number, Prompts& prompts);
  Task<> restore_gain(std::size_t gain, Prompts& prompts);
  Task<> set_dpc(Prompts& prompts);
  std::string unread_dpc() const;
  /// What the button of a control says that it sets.
  std::string name_of(DynamicControl control, std::size_t index = 0) const;
  void set_step_row(std::size_t bank, std::size_t row, Prompts& prompts);
  Task<> tell(std::vector<StepMessage> messages, Prompts& prompts);

  View nobody_;
  View* dynamic_view_ = &nobody_;
  std::size_t first_cell_;  // its place in the fields, where those of all banks follow each other
  std::size_t source_ = 0;
  bool video_mode_enabled_ = true;
};

}  // namespace qv5123
