#pragma once

#include <array>
#include <optional>
#include <string>

#include "base/task.h"
#include "console/page_host.h"
#include "console/prompts.h"
#include "link/command_link.h"
#include "tuning/matrix.h"
#include "tuning/picker_desk.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The linear matrix page without its window.
class MatrixDesk final : public PageDesk<MatrixPage> {
 public:
  class View : public DeskView {
   public:
    /// What was measured, and all that has to do with measuring. The codes are left alone.
    virtual void show_measurements() {}
    /// Which patches may be typed into.
    virtual void show_typing() {}
    virtual void show_codes() {}
    /// How close the patches come to what they should be.
    virtual void show_report() {}
    /// Whether the picker may be switched: not while a save does so by itself.
    virtual void allow_switch(bool) {}
  };
  /// The patches that may be typed into.
  enum class Typing { none, chosen, all };

  MatrixDesk(DeskHost& host, UserDataImage& image);
  void attach(View& view);

  PickerDesk& picker() { return picker_; }

  void choose_light(int light);
  void choose_mode(int mode);
  void choose_patch(std::size_t patch);
  void choose_patch_step(int step) { values_.patch_step = step; }
  void choose_manual_input(bool on);
  Typing typing() const;
  /// The count of a colour, 0..2, of a patch.
  void type_patch(std::size_t patch, std::size_t colour, std::uint32_t count);
  /// One out of range is refused: it stands in its edit and Calculate does nothing.
  void type_ratio(int percent);
  /// Taken by the next "Set" of a row.
  void type_code(int row, int column, std::string text);
  /// What stands in the edit of a code: what was typed there, or the matrix in force.
  std::string code_text(int row, int column) const;
  /// Whether it is neither a code nor empty.
  bool code_refused(int row, int column) const;

  /// "GET COLOR"; ignored while one is under way.
  void get_color();
  void calculate(Prompts& prompts);
  void clear();
  /// "Set" beside a row.
  void set_row(MatrixControl row);
  /// "File/Flash Save" on file and chip.
  Task<> save(PageHost& files);

  /// Switches the picker off, which makes the chip correct colours again.
  Task<> after_save() override;
  /// See Page::leave().
  Traffic leave() { return picker_.leave(); }
  Traffic own_traffic(const std::vector<std::size_t>& fields) const override {
    return values_traffic(fields);
  }
  Traffic control_traffic(int control) const override { return matrix_send_row(values_, control); }
  /// Those of the current mode and light source.
  std::vector<WriteNote::Value> control_values(int control) const override;

 private:
  using TypedCodes = std::array<std::array<std::optional<std::string>, 3>, kMatrixRows>;

  FullSave make_save() override { return {matrix_full_save(values_), {}, {}, {}}; }
  Traffic values_traffic(const std::vector<std::size_t>& fields) const override;
  std::vector<WriteNote::Value> own_values(const std::vector<std::size_t>& fields) const override;
  void values_loaded() override { typed_codes_ = {}; }
  void show_matrix_in_force();
  void update_keys();
  void picker_settled();
  Task<> run_get_color();
  bool take_codes();

  View nobody_;
  View* matrix_view_ = &nobody_;
  PickerDesk picker_;
  int typed_ratio_;
  TypedCodes typed_codes_;
  bool measuring_patch_ = false;
  std::string picker_trouble_;  ///< why the last save left the picker as it was
  Flow measuring_;
};

/// Sets `values.picker_on` and brings the chip to it; switching on ends manual input. The values are the
/// page's own and must outlive the flow. What went wrong, in words; empty when the chip followed. Nothing is
/// written where the chip does not tell the bits to keep.
Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on);

/// "GET COLOR": what the picker reads becomes `patch`, 0..23, which was selected as the button was pressed;
/// then the picker goes on by the patch step. False when the chip did not answer; the patch then keeps its
/// values and the picker its place.
Task<bool> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch);

}  // namespace qv5123
