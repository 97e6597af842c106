#pragma once

#include <string>

#include "console/prompts.h"
#include "tuning/gamma.h"
#include "tuning/gamma_chart.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The gamma page without its window.
class GammaDesk final : public PageDesk<GammaPage> {
 public:
  class View : public DeskView {
   public:
    /// Nothing but these points has moved: a drag says so with every move of the mouse.
    virtual void show_moved(const GammaHit&) {}
    /// A line for the messages.
    virtual void add_message(const std::string&) {}
  };
  /// The level is the program's own and becomes the default where nobody has set it. It must outlive the
  /// desk.
  GammaDesk(DeskHost& host, UserDataImage& image, double& front_gamma_level);
  void attach(View& view);

  /// A radio button.
  void choose_channel(GammaChannel clicked);
  void type_gamma(double gamma) { values_.gamma_value = gamma; }
  void type_front_gamma(double gamma) { values_.front_gamma_value = gamma; }
  void choose_itu_709(bool on) { values_.itu_709 = on; }
  /// "Set" beside "Gamma Value", and beside the front gamma's.
  void compute_end(Prompts& prompts);
  void compute_front(Prompts& prompts);
  /// "Apply".
  void apply();
  /// In the chart: to a value, or by so many steps.
  void drag(const GammaHit& points, int value);
  void end_drag() { ++drags_; }
  void nudge(const GammaHit& points, int delta);
  /// "File/Flash Save", which is of the chip alone.
  Task<> save();

  Traffic control_traffic(int control) const override;

 private:
  FullSave make_save() override { return {gamma_full_save(values_), {}, {}, {}}; }
  std::vector<WriteNote::Value> save_values() const override;
  Task<> run_apply();
  std::string selected_names() const;

  double& front_gamma_level_;
  unsigned drags_ = 1;
  View nobody_;
  View* gamma_view_ = &nobody_;
};

}  // namespace qv5123
