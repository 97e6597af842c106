#include "state/way_back.h"

#include <algorithm>

#include "base/text.h"

namespace qv5123 {
namespace {

std::optional<int> known_number(const ChipValue& chip) {
  return chip.how == Known::nothing ? std::nullopt : std::optional(chip.number);
}

std::string number_text(std::optional<int> number) {
  return number ? std::to_string(*number) : "?";
}

std::string difference(const std::string& name, const WayBack::Value& value) {
  return name + ": chip " + number_text(value.chip) + ", then " + std::to_string(value.then);
}

void add_page(const KnownValues& then, const ValueStates& states, std::size_t page, WayBack& way) {
  WayBack::Page differing{page, {}, {}};
  const std::vector<ValueState> now = states.states(page);
  for (std::size_t i = 0; i < now.size(); ++i) {
    const FieldInfo& field = states.fields(page)[i];
    const std::string name = states.full_name(page, i);
    const auto known = then.find(name);
    if (known == then.end()) continue;
    const WayBack::Value value{i, known_number(now[i].chip), known->second};
    if (value.chip == value.then) continue;
    way.differences.push_back(difference(name, value));
    if (field.sent_by == Field::kNowhere)
      ++way.unsendable;
    else
      differing.values.push_back(value);
  }
  if (!differing.values.empty()) way.pages.push_back(std::move(differing));
}

}  // namespace

std::vector<std::size_t> WayBack::Page::fields() const {
  std::vector<std::size_t> fields;
  for (const Value& value : values) fields.push_back(value.field);
  return fields;
}

WayBack way_back(const KnownValues& then, const ValueStates& states) {
  WayBack way;
  for (std::size_t page = 0; page < states.pages(); ++page) add_page(then, states, page, way);
  return way;
}

void add_neighbours(WayBack& way, WayBack::Page& page, const std::vector<WriteNote::Value>& sent,
                    const KnownValues& then, const ValueStates& states) {
  const std::vector<std::size_t> own = page.fields();
  for (const WriteNote::Value& value : sent) {
    if (std::find(own.begin(), own.end(), value.field) != own.end()) continue;
    const std::string name = states.full_name(page.page, value.field);
    const ValueState now = states.state(page.page, value.field);
    const std::optional<int> chip = known_number(now.chip);
    const FieldInfo& field = states.fields(page.page)[value.field];
    if (const auto known = then.find(name); known != then.end())
      page.neighbours.push_back({value.field, chip, known->second});
    else if (!chip || !now.page || field.held_by_chip(*now.page) != *chip)
      way.unknown.push_back(name + ": chip " + number_text(chip) + ", page " + number_text(now.page));
  }
}

std::size_t unnamed_writes_after(const WriteJournal& journal, std::size_t count) {
  std::size_t unnamed = 0;
  for (std::size_t i = count; i < journal.size(); ++i) {
    const WriteRecord record = journal.at(i);
    if (record.values.empty() && !is_question(record) && !is_connection(record)) ++unnamed;
  }
  return unnamed;
}

std::string way_back_question(const WayBack& way, const SendingSum& sum, std::size_t unnamed) {
  std::string text = counted(way.differences.size(), "value") +
                     (way.differences.size() == 1 ? " differs" : " differ") + " from that moment:\n\n";
  text += named_texts(way.differences);
  if (way.unsendable > 0)
    text += "\nNothing sends " + std::to_string(way.unsendable) + " of them alone; left out.\n";
  if (!way.unknown.empty())
    text += "\nThese go along as their pages have them; what they were then is not known:\n" +
            named_texts(way.unknown);
  if (unnamed > 0)
    text += "\n" + counted(unnamed, "write") + " since then without names of values " +
            (unnamed == 1 ? "is" : "are") + " not taken back.\n";
  return text + "\nSend " + sending_text(sum) + "? The pages take the values, too.";
}

}  // namespace qv5123
