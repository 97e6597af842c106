#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/task.h"
#include "console/page_host.h"
#include "console/prompts.h"
#include "link/command_link.h"
#include "tuning/chart_measurement.h"
#include "tuning/color_fit.h"
#include "tuning/matrix.h"
#include "tuning/picker_desk.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The linear matrix page without its window.
class MatrixDesk final : public PageDesk<MatrixPage>, private MeasuredChart {
 public:
  class View : public DeskView {
   public:
    /// What was measured, and all that has to do with measuring. The codes are left alone.
    virtual void show_measurements() {}
    /// Which patches may be typed into.
    virtual void show_typing() {}
    virtual void show_codes() {}
    /// How many corners are set, and how far "Measure all 24" has come.
    virtual void show_run() {}
    /// How close the patches come to what they should be, and with which of the two fits.
    virtual void show_report() {}
    /// Whether the picker may be switched: not while a save does so by itself.
    virtual void allow_switch(bool) {}
    /// Whether somebody who points at the picture looks at this page.
    virtual bool in_view() const { return true; }
  };
  /// The patches that may be typed into.
  enum class Typing { none, chosen, all };
  enum class Fit { calculated, color_difference };
  /// What both fits came to; empty before them, and once other patches are measured.
  struct Fits {
    std::optional<Coefficients> calculated;
    std::optional<Coefficients> color_difference;
  };

  MatrixDesk(DeskHost& host, UserDataImage& image,
             std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());
  ~MatrixDesk() override { board_->chart = nullptr; }
  void attach(View& view);

  PickerDesk& picker() { return picker_; }

  void choose_light(int light);
  void choose_mode(int mode);
  /// With a patch step the cursor goes there, as many steps across and down as the patch is from the last.
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

  /// "GET COLOR"; what is pressed while one is under way comes after it.
  void get_color();
  /// "Set corner": the cursor is on the chosen patch, one of the chart's corners. Kept for the video mode.
  /// Until all four are set, pointing at one in the picture does the same while the page is shown and has
  /// switched the picker on.
  void set_corner();
  const ChartCorners& corners() const { return board_->corners()[static_cast<std::size_t>(values_.mode)]; }
  /// "Measure all 24", from the four corners; pressed again it stops. Where a reading is doubtful it stops by
  /// itself, and goes on once "GET COLOR" has measured that patch.
  void measure_all();
  bool measuring_all() const { return run_.running(); }
  /// Why the last run has stopped by itself; empty where it has not.
  const std::string& run_complaint() const { return run_.complaint(); }
  std::size_t patches_left() const { return kPatches - values_.patch; }
  bool measuring() const { return measuring_.running(); }
  void calculate(Prompts& prompts);
  /// "Fit color difference": puts its result beside that of "Calculate"; the matrix in force stays until one
  /// of the two is chosen. Ignored while one is under way.
  void fit_color_difference(PageHost& worker);
  const ColorFitOptions& color_options() const { return color_options_; }
  void choose_memory_weight(int weight) { color_options_.memory_weight = weight; }
  void choose_noise_limit(int percent) { color_options_.noise_limit = percent; }
  const Fits& fits() const { return fits_; }
  /// Makes the result of a fit the current matrix.
  void choose_fit(Fit fit);
  /// Whether the current matrix is the result of this fit.
  bool in_force(Fit fit) const;
  void clear();
  /// "Set" beside a row. Asks first where the matrix may amplify errors, once for each reason.
  void set_row(MatrixControl row, Prompts& prompts);
  /// "Copy matrix to...": what stands in the edits goes to these places, in the tables and on the chip, each
  /// by the bursts of its own "Set" buttons. Asks as they do.
  void copy_matrix(std::vector<MatrixPlace> places, Prompts& prompts);
  /// "File/Flash Save" on file and chip. start_save() asks first where a fit has put a doubtful matrix into
  /// the tables, as "Set" does.
  Task<> save(PageHost& files);

  /// Switches the picker off, which makes the chip correct colours again.
  Task<> after_save() override;
  /// See Page::leave().
  Traffic leave() { return picker_.leave(); }
  Traffic own_traffic(const std::vector<std::size_t>& fields) const override;
  Traffic control_traffic(int control) const override { return matrix_send_row(values_, control); }
  /// Those of the current mode and light source.
  std::vector<WriteNote::Value> control_values(int control) const override;

 private:
  using TypedCodes = std::array<std::array<std::optional<std::string>, 3>, kMatrixRows>;

  /// The matrix of a fit, which may amplify errors: where it has come into the tables, and why.
  struct Doubtful {
    MatrixPlace place;
    std::array<MatrixCodes, kMatrixRows> codes;
    std::string reasons;
  };

  FullSave make_save() override { return {matrix_full_save(values_), {}, {}, {}}; }
  Traffic values_traffic(const std::vector<std::size_t>& fields) const override;
  std::vector<WriteNote::Value> own_values(const std::vector<std::size_t>& fields) const override;
  void values_loaded() override;
  template <class Does>
  void each_row(const std::vector<std::size_t>& fields, Does does) const;
  void show_matrix_in_force();
  void update_keys();
  /// Where the chip uses the matrix of another mode; empty where it does not, or nobody knows.
  std::string other_mode_text() const;
  void picker_settled();
  void take_corner(std::size_t corner);
  void take_pointed();
  Task<> run_get_color();
  Task<bool> measure_patch(std::size_t patch);
  Task<> run_all(std::array<PickerPosition, kPatches> places, std::size_t first);
  void approach(std::size_t patch, PickerPosition place) override;
  const MeasuredColours& readings() const override { return values_.measured; }
  MeasuredColours patches() const override { return values_.measured; }
  void take_reading(std::size_t patch, const PerColour& colour) override;
  std::string reading_text(std::size_t patch) const override;
  Task<> run_color_fit(PageHost& worker);
  void show_current();
  void forget_fits();
  std::array<MatrixCodes, kMatrixRows> codes_at(const MatrixPlace& place) const;
  void note_doubts();
  std::string unread_saved() const override;
  bool take_codes();
  void with_consent(std::string what, const std::string& doubt, Prompts& prompts, std::function<void()> send);
  Task<> ask_first(Prompts& prompts, std::string what, std::string reasons, std::function<void()> send);
  void send_row(MatrixControl row);
  void send_copies(const std::vector<MatrixPlace>& places);

  View nobody_;
  View* matrix_view_ = &nobody_;
  std::shared_ptr<MeasuringBoard> board_;
  PickerDesk picker_;
  int typed_ratio_;
  TypedCodes typed_codes_;
  std::string picker_trouble_;  ///< why the last save left the picker as it was
  Flow measuring_;
  std::size_t measured_patch_ = 0;  ///< the one that is being measured
  /// Presses of "GET COLOR" that wait: for which patch, or for the one that is chosen by then.
  std::deque<std::optional<std::size_t>> presses_;
  ChartMeasurement run_;
  Flow running_all_;
  ColorFitOptions color_options_;
  Fits fits_;
  MeasuredColours fitted_to_{};  ///< the patches that fits_ were made of
  std::vector<Doubtful> doubtful_;
  std::string accepted_;  ///< reasons that the user has sent a matrix in spite of
  Flow fitting_;
};

/// Sets `values.picker_on` and brings the chip to it; switching on ends manual input. The values are the
/// page's own and must outlive the flow. What went wrong, in words; empty when the chip followed. Nothing is
/// written where the chip does not tell the bits to keep.
Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on);

enum class GotColor {
  no_answer,    ///< the patch keeps its values and the picker its place
  measured,     ///< and the picker is where the values say
  cursor_lost,  ///< measured; the picker was to go on, and may not have
};
/// "GET COLOR": what the picker reads becomes `patch`, 0..23, which was selected as the button was pressed;
/// then the picker goes on by the patch step.
Task<GotColor> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch);

}  // namespace qv5123
