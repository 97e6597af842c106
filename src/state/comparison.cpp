#include "state/comparison.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

constexpr std::array kPlaces{Place::page, Place::chip, Place::file, Place::other};

/// The page's entry in a list that is filled page after page.
PageValues& of_page(std::vector<PageValues>& pages, std::size_t page) {
  if (pages.empty() || pages.back().page != page) pages.push_back({page, {}});
  return pages.back();
}

std::string sent_value_text(const Comparison& comparison, std::size_t value) {
  const std::string chip = comparison.text(value, Place::chip);
  return comparison.full_name(value) + ": chip " + (chip.empty() ? "?" : chip) + ", page " +
         comparison.text(value, Place::page);
}

}  // namespace

OtherValues values_in_file(const ValueStates& states, const UserDataImage& image, std::string title) {
  OtherValues values{std::move(title), false, {}};
  for (std::size_t page = 0; page < states.pages(); ++page) {
    const std::unique_ptr<TuningModel> model = make_model(states.page_name(page));
    model->load_all(image);
    const std::vector<int> numbers = model->numbers();
    auto& of_page = values.numbers.emplace_back(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i)
      if (model->fields()[i].has_entry()) of_page[i] = numbers[i];
  }
  return values;
}

OtherValues values_in_journal(const ValueStates& states, const KnownValues& known, std::string title) {
  OtherValues values{std::move(title), true, {}};
  for (std::size_t page = 0; page < states.pages(); ++page) {
    auto& of_page = values.numbers.emplace_back();
    for (std::size_t i = 0; i < states.fields(page).size(); ++i) {
      const auto found = known.find(states.full_name(page, i));
      of_page.push_back(found == known.end() ? std::nullopt : std::optional(found->second));
    }
  }
  return values;
}

Comparison::Comparison(const ValueStates& states) : source_(states) {
  for (std::size_t page = 0; page < states.pages(); ++page) {
    for (std::size_t i = 0; i < states.fields(page).size(); ++i) {
      const std::string caption = states.fields(page)[i].caption.caption();
      ids_.push_back({page, i});
      searched_.push_back(lower_case(states.full_name(page, i) + " " + caption));
    }
  }
  look_again();
}

void Comparison::look_again() {
  states_.clear();
  for (std::size_t page = 0; page < source_.pages(); ++page) states_.push_back(source_.states(page));
}

const FieldInfo& Comparison::field(std::size_t value) const {
  return source_.fields(ids_[value].page)[ids_[value].field];
}

const std::string& Comparison::page_name(std::size_t value) const {
  return source_.page_name(ids_[value].page);
}

std::optional<int> Comparison::number(std::size_t value, Place place) const {
  const ValueState& known = state(value);
  switch (place) {
    case Place::page:
      return known.page;
    case Place::chip:
      return known.chip.how == Known::nothing ? std::nullopt : std::optional(known.chip.number);
    case Place::file:
      return known.file;
    default:
      return other_ ? other_->numbers[ids_[value].page][ids_[value].field] : std::nullopt;
  }
}

std::string Comparison::text(std::size_t value, Place place) const {
  const std::optional<int> known = number(value, place);
  return known ? field(value).text(*known) : std::string();
}

bool Comparison::holds_as_chip(Place place) const {
  return place == Place::chip || (place == Place::other && other_ && other_->of_chip);
}

bool Comparison::differs(std::size_t value, Place one, Place two) const {
  const std::optional<int> a = number(value, one);
  const std::optional<int> b = number(value, two);
  if (!a || !b) return false;
  const FieldInfo& field = this->field(value);
  if (holds_as_chip(one) || holds_as_chip(two)) {
    const auto on_chip = [&](Place place, int number) {
      return holds_as_chip(place) ? number : field.held_by_chip(number);
    };
    return on_chip(one, *a) != on_chip(two, *b);
  }
  // A file keeps what its page never stores there.
  const bool of_page = one == Place::page || two == Place::page;
  if (of_page && !field.kept_in_file()) return false;
  return field.held_by_file(*a) != field.held_by_file(*b);
}

bool Comparison::differs(std::size_t value) const {
  for (std::size_t one = 0; one < kPlaces.size(); ++one)
    for (std::size_t two = one + 1; two < kPlaces.size(); ++two)
      if (differs(value, kPlaces[one], kPlaces[two])) return true;
  return false;
}

bool Comparison::stands_out(std::size_t value, Place place) const {
  const auto known = std::find_if(kPlaces.begin(), kPlaces.end(),
                                  [&](Place each) { return number(value, each).has_value(); });
  return known != kPlaces.end() && differs(value, *known, place);
}

bool Comparison::matches(std::size_t value, const CompareFilter& filter,
                         const std::vector<std::string>& words) const {
  const auto occurs = [&](const std::string& word) {
    return searched_[value].find(word) != std::string::npos;
  };
  if (!std::all_of(words.begin(), words.end(), occurs)) return false;
  switch (filter.show) {
    case CompareFilter::Show::all:
      return true;
    case CompareFilter::Show::differences:
      return differs(value);
    default:
      return differs(value, filter.one, filter.two);
  }
}

std::vector<std::size_t> Comparison::find(const CompareFilter& filter) const {
  const std::vector<std::string> words = filter_words(filter.words);
  std::vector<std::size_t> found;
  for (std::size_t value = 0; value < size(); ++value)
    if (matches(value, filter, words)) found.push_back(value);
  return found;
}

std::vector<std::size_t> PageValues::fields() const {
  std::vector<std::size_t> fields;
  for (const WriteNote::Value& value : values) fields.push_back(value.field);
  return fields;
}

std::vector<PageValues> values_to_take(const Comparison& comparison, const std::vector<std::size_t>& chosen,
                                       Place from) {
  std::vector<PageValues> pages;
  for (const std::size_t value : chosen) {
    const std::optional<int> number = comparison.number(value, from);
    if (!number || number == comparison.state(value).page) continue;
    const ValueId& id = comparison.id(value);
    of_page(pages, id.page).values.push_back({id.field, *number});
  }
  return pages;
}

ValuesToSend values_to_send(const Comparison& comparison, const std::vector<std::size_t>& chosen) {
  ValuesToSend sending;
  for (const std::size_t value : chosen) {
    const ValueId& id = comparison.id(value);
    const std::optional<int> number = comparison.state(value).page;
    if (comparison.field(value).sent_by == Field::kNowhere) {
      ++sending.unsendable;
    } else if (!number) {
      ++sending.unopened;
    } else {
      of_page(sending.pages, id.page).values.push_back({id.field, *number});
      sending.texts.push_back(sent_value_text(comparison, value));
    }
  }
  return sending;
}

std::string sending_question(const ValuesToSend& values, const SendingSum& sum) {
  std::string text = "Send " + counted(values.texts.size(), "value") + " to the chip?\n\n";
  text += named_texts(values.texts);
  if (values.unsendable > 0)
    text += "\nNothing sends " + std::to_string(values.unsendable) + " of those chosen alone; left out.\n";
  if (values.unopened > 0)
    text +=
        "\nThe pages of " + std::to_string(values.unopened) + " of those chosen hold nothing; left out.\n";
  return text + "\nEach goes as its page's own control sends it: " + sending_text(sum) + ".";
}

const char* known_text(Known how) {
  switch (how) {
    case Known::nothing:
      return "not known";
    case Known::sent:
      return "sent, not read back";
    case Known::read:
      return "read";
    default:
      return "verified";
  }
}

}  // namespace qv5123
