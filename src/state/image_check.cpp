#include "state/image_check.h"

#include <algorithm>
#include <utility>

#include "tuning/tuning_desk.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {

std::vector<WriteNote::Value> ImageCheck::values_of(std::size_t page) const {
  const std::unique_ptr<TuningModel> model = make_model(states_.page_name(page));
  model->load_all(document_.user_data);
  const std::vector<int> numbers = model->numbers();
  std::vector<WriteNote::Value> values;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = model->fields()[i];
    if (field.has_entry()) values.push_back({i, taken_from_image(field, numbers[i], document_.user_data)});
  }
  return values;
}

Task<> ImageCheck::verify() {
  results_.clear();
  for (std::size_t page = 0; page < states_.pages(); ++page) {
    const std::vector<WriteNote::Value> values = values_of(page);
    const std::unique_ptr<TuningModel> chip = make_model(states_.page_name(page));
    const std::uint64_t asked_at = states_.jobs();
    Verification found = co_await verify_page(host_.link(), *chip, values);
    states_.page_verified(page, values, found, asked_at);
    const bool silent = found.end == Verification::End::no_answer;
    results_.push_back({page, std::move(found)});
    // Nobody is there; the other pages would only take their time to find that.
    if (silent) co_return;
  }
}

Task<> ImageCheck::repair(int times) {
  for (; times > 0 && can_repair(); --times) {
    const std::vector<PageResult> results = results_;
    for (const PageResult& result : results)
      if (!result.found.to_repair().empty()) co_await send_again(result);
    co_await verify();
  }
}

Task<> ImageCheck::send_again(const PageResult& result) {
  const std::unique_ptr<TuningDesk> desk = make_desk(states_.page_name(result.page), host_, document_);
  desk->model().load_all(document_.user_data);
  // Also where the page itself would limit what stands in the image: the chip has taken the image's own
  // bytes.
  for (const WriteNote::Value& value : values_of(result.page))
    desk->model().set_number(value.field, value.number);
  co_await desk->send_kept("System, again", result.found.to_repair());
}

bool ImageCheck::can_repair() const {
  return std::ranges::any_of(results_,
                             [](const PageResult& result) { return !result.found.to_repair().empty(); });
}

std::vector<std::string> ImageCheck::differences() const {
  std::vector<std::string> all;
  for (const PageResult& result : results_) {
    // What differs on a page that is not known as a whole is sent again, and not counted.
    if (result.found.end != Verification::End::differs) continue;
    for (const std::string& text : difference_texts(states_.fields(result.page), result.found))
      all.push_back(states_.page_name(result.page) + " " + text);
  }
  return all;
}

std::string ImageCheck::text() const {
  using End = Verification::End;
  const std::vector<std::string> differing = differences();
  Verification sum;
  sum.end = differing.empty() ? End::verified : End::differs;
  std::string unheard;
  for (const PageResult& result : results_) {
    sum.sent += result.found.sent;
    sum.reported += result.found.reported;
    if (result.found.end == End::no_answer || result.found.end == End::unclear)
      unheard += ". " + verification_text(result.found, {}) + " (" + states_.page_name(result.page) + ")";
  }
  if (differing.empty() && !unheard.empty()) return unheard.substr(2);
  return verification_text(sum, differing) + unheard;
}

}  // namespace qv5123
