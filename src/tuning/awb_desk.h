#pragma once

#include <cstddef>
#include <string>

#include "tuning/awb.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The AWB page without its window.
class AwbDesk final : public PageDesk<AwbPage> {
 public:
  AwbDesk(DeskHost& host, UserDataImage& image);

  /// The patch that the next "GET COLOR" is for, 0..23.
  void choose_patch(std::size_t patch) { patch_ = patch; }
  /// "S" beside a line: limits its words and sends them.
  void send_line(AwbControl line);
  /// The chip's menu keys, "None", "Set" and "Check"; `name` is the button's.
  void press(const std::string& name, RegisterWrite key) { send_noted(name, {Batch{key}}, {}); }
  /// "GET COLOR"; ignored while one is under way.
  void get_color();
  bool measuring() const { return measuring_.running(); }
  /// "File/Flash Save".
  Task<> save();

  Traffic control_traffic(int control) const override;

 private:
  FullSave make_save() override { return {awb_full_save(values_), {}, {}, {}}; }
  void limit(const std::vector<std::size_t>& fields) override;
  Task<> measure(std::size_t patch);

  std::size_t patch_ = 0;
  Flow measuring_;
};

}  // namespace qv5123
