#include "cli/tuning_page.h"

#include <algorithm>
#include <array>
#include <utility>

#include "cli/members.h"
#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix_flow.h"
#include "tuning/page_model.h"

namespace qv5123 {
namespace {

/// Numbers to try a value with. What reacts to none of them does not depend on
/// it.
constexpr std::array kTrials{0, 1, 2, 3, -1, 50, -50, 100, 255, 256, 1023, 4095, -30000, 0xFFFF};

/// What differs from page to page. The pages' own functions do the work.
struct PageKind {
  template <class Values>
  static void store(const Values& values, UserDataImage& image) {
    save_to_user_data(values, image);
  }
  template <class Values>
  static void load(Values& values, const UserDataImage& image) {
    reload_from_user_data(values, image);
  }
};

struct FrontKind : PageKind {
  using Values = FrontValues;
  static constexpr std::uint8_t kTrigger = kFrontQuery;
  static Members<Values> members() { return front_members(); }
  static auto decode(std::string_view reply) { return decode_front_reply(reply, {}); }
  static std::string encode(const Values& values) { return encode_front_reply(values); }
  static TuningPage::Save save(Values& values, const UserDataImage&) {
    return {front_save_traffic(values), {}, {}, {}};
  }
  // "Color Suppress" is stored by its own control, not with the others.
  static void store(const Values& values, UserDataImage& image) {
    save_to_user_data(values, image);
    qv5123::store(front_effect(FrontControl::ColorSuppress, values), image);
  }
  static void load(Values& values, const UserDataImage& image) {
    reload_from_user_data(values, image);
    values.color_suppress = true;
    const ImageEntry on = front_effect(FrontControl::ColorSuppress, values).entries.at(0);
    values.color_suppress = image.entry(on.index) == on.value;
  }
};

/// Ends a capture, which makes the chip correct colours again.
Task<> end_capture(CommandLink& link) {
  MatrixValues values;
  co_await switch_matrix_picker(link, values, false);
}

Task<> nothing_after_save(CommandLink&) {
  co_return;
}

template <class Kind>
class PageOf final : public TuningPage {
 public:
  using Values = typename Kind::Values;

  explicit PageOf(const std::string& name) : TuningPage(name, Kind::kTrigger), members_(Kind::members()) {
    for (const Member<Values>& member : members_) values_.push_back(find_out(member));
  }

  Numbers from_image(const UserDataImage& image) const override {
    Values values;
    Kind::load(values, image);
    return numbers(values);
  }

  std::optional<Numbers> from_reply(std::string_view reply) const override {
    const auto values = Kind::decode(reply);
    if (!values) return std::nullopt;
    return numbers(*values);
  }

  void store(std::size_t value, int number, UserDataImage& image) const override {
    Values values;
    Kind::load(values, image);
    members_[value].set(values, number);
    UserDataImage stored = image;
    Kind::store(values, stored);
    for (const std::size_t entry : values_[value].entries) image.set_entry(entry, stored.entry(entry));
  }

  Save save(const UserDataImage& image) const override {
    Values values;
    Kind::load(values, image);
    Save save = Kind::save(values, image);
    save.numbers = numbers(values);
    return save;
  }

 private:
  Numbers numbers(const Values& values) const {
    Numbers numbers;
    for (const Member<Values>& member : members_) numbers.push_back(member.get(values));
    return numbers;
  }

  /// Where a value goes is found out by changing it and looking what changes
  /// with it, so that no place is named a second time here.
  Value find_out(const Member<Values>& member) const {
    const auto reply = [](const Values& values) { return Kind::encode(values); };
    const auto traffic = [](Values values) { return Kind::save(values, UserDataImage()).traffic; };
    std::vector<std::size_t> entries = entries_of(member);
    return {name() + "." + member.name, std::move(entries), reacts(member, reply), reacts(member, traffic)};
  }

  static Values trial(const Member<Values>& member, int number) {
    Values values;
    member.set(values, number);
    return values;
  }

  template <class Function>
  static bool reacts(const Member<Values>& member, Function function) {
    const auto first = function(trial(member, kTrials[0]));
    return std::any_of(kTrials.begin() + 1, kTrials.end(),
                       [&](int number) { return function(trial(member, number)) != first; });
  }

  static std::vector<std::size_t> entries_of(const Member<Values>& member) {
    UserDataImage first;
    Kind::store(trial(member, kTrials[0]), first);
    std::array<bool, UserDataImage::kSize> differs{};
    for (const int number : kTrials) {
      UserDataImage image;
      Kind::store(trial(member, number), image);
      for (std::size_t i = 0; i < differs.size(); ++i) differs[i] |= image.entry(i) != first.entry(i);
    }
    std::vector<std::size_t> entries;
    for (std::size_t i = 0; i < differs.size(); ++i)
      if (differs[i]) entries.push_back(i);
    return entries;
  }

  const Members<Values> members_;
};

/// A page that has a model.
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

template <class Kind>
std::unique_ptr<TuningPage> make(std::string_view name) {
  return std::make_unique<PageOf<Kind>>(std::string(name));
}

}  // namespace

std::unique_ptr<TuningPage> make_tuning_page(std::string_view name) {
  if (name == "front") return make<FrontKind>(name);
  if (name == "awb") return std::make_unique<ModelPage<AwbPage>>(std::string(name), awb_save_traffic);
  if (name == "dynamic") return std::make_unique<DynamicModelPage>(std::string(name));
  if (name == "gamma") return std::make_unique<ModelPage<GammaPage>>(std::string(name), gamma_full_save);
  if (name == "matrix")
    return std::make_unique<ModelPage<MatrixPage>>(std::string(name), matrix_full_save, end_capture);
  return std::make_unique<ModelPage<LensPage>>(std::string(name), lens_full_save);
}

}  // namespace qv5123
