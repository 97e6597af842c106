#include "cli/tuning_page.h"

#include <algorithm>
#include <utility>

#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix_flow.h"
#include "tuning/page_model.h"

namespace qv5123 {
namespace {

/// Ends a capture, which makes the chip correct colours again.
Task<> end_capture(CommandLink& link) {
  MatrixValues values;
  co_await switch_matrix_picker(link, values, false);
}

Task<> nothing_after_save(CommandLink&) {
  co_return;
}

/// A page as its layout tells it.
template <class Page>
class ModelPage : public TuningPage {
 public:
  using FullSave = Traffic (*)(const typename Page::Values&);
  using AfterSave = Task<> (*)(CommandLink&);
  ModelPage(std::string name, FullSave full_save, AfterSave after_save = nothing_after_save)
      : TuningPage(std::move(name), Page::kTexts.trigger), full_save_(full_save), after_save_(after_save) {
    for (const FieldInfo& field : PageModel<Page>().fields())
      values_.push_back({this->name() + "." + field.name, field.entries(), field.has_reply(), field.saved});
  }
  Numbers from_image(const UserDataImage& image) const override {
    PageModel<Page> model;
    model.load_all(image);
    return model.numbers();
  }
  std::optional<Numbers> from_reply(std::string_view reply) const override {
    PageModel<Page> model;
    if (!model.take_reply(reply)) return std::nullopt;
    return model.numbers();
  }
  void store(std::size_t value, int number, UserDataImage& image) const override {
    PageModel<Page> model;
    model.load_all(image);
    // What a file brought is kept as it is, also what nobody could have typed.
    if (model.numbers()[value] != number) model.set_number(value, number);
    model.store_field(value, image);
  }
  Save save(const UserDataImage& image) const override {
    PageModel<Page> model;
    model.load_all(image);
    return {full_save_(model.values), {}, model.numbers(), {}};
  }
  Task<> after_save(CommandLink& link) const override { return after_save_(link); }

 private:
  FullSave full_save_;
  AfterSave after_save_;
};

/// Its full save corrects values, and takes some that are no page's from the image.
class DynamicModelPage final : public ModelPage<DynamicPage> {
 public:
  explicit DynamicModelPage(std::string name) : ModelPage(std::move(name), nullptr) {}
  /// Steps are limited whenever they are sent, wherever they came from.
  void store(std::size_t value, int number, UserDataImage& image) const override {
    const FieldInfo& field = field_list<DynamicPage>()[value];
    const bool is_step = field.sent_by >= control_number(DynamicControl::step_row);
    ModelPage::store(value, is_step ? std::clamp(number, field.range.lowest, field.range.highest) : number,
                     image);
  }
  Save save(const UserDataImage& image) const override {
    PageModel<DynamicPage> model;
    model.load_all(image);
    DynamicSave all = dynamic_save(model.values, image);
    model.values = std::move(all.values);
    Save save{std::move(all.traffic), kFlashStoreTime, model.numbers(), {}};
    for (const StepMessage& message : all.messages)
      save.warnings.push_back(message.title + ": " + message.text);
    return save;
  }
};

}  // namespace

std::unique_ptr<TuningPage> make_tuning_page(std::string_view name) {
  if (name == "front") return std::make_unique<ModelPage<FrontPage>>(std::string(name), front_full_save);
  if (name == "awb") return std::make_unique<ModelPage<AwbPage>>(std::string(name), awb_save_traffic);
  if (name == "dynamic") return std::make_unique<DynamicModelPage>(std::string(name));
  if (name == "gamma") return std::make_unique<ModelPage<GammaPage>>(std::string(name), gamma_full_save);
  if (name == "matrix")
    return std::make_unique<ModelPage<MatrixPage>>(std::string(name), matrix_full_save, end_capture);
  return std::make_unique<ModelPage<LensPage>>(std::string(name), lens_full_save);
}

}  // namespace qv5123
