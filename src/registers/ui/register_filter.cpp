#include "registers/ui/register_filter.h"

#include <algorithm>

namespace qv5123 {
namespace {

QString qt_text(const std::u16string& text) {
  return QString::fromStdU16String(text);
}

}  // namespace

RegisterFilter::RegisterFilter(const RegisterSheet& sheet, const RegisterFavourites& favourites,
                               QObject* parent)
    : QSortFilterProxyModel(parent), sheet_(sheet), favourites_(favourites) {}

void RegisterFilter::choose(const QString& words, OnlyRegisters only) {
  words_ = words.simplified().split(u' ', Qt::SkipEmptyParts);
  only_ = only;
  decide();
}

void RegisterFilter::take_description() {
  texts_.clear();
  decide();
}

void RegisterFilter::take_category() {
  // What the user filters by is of all categories.
  if (!active()) decide();
}

void RegisterFilter::decide() {
  const std::size_t count = sheet_.description().registers.size();
  listed_.resize(count);
  for (std::size_t reg = 0; reg < count; ++reg) listed_[reg] = wants(reg);
}

void RegisterFilter::look_again() {
  if (only_ == OnlyRegisters::any) return;
  bool more = false;
  for (std::size_t reg = 0; reg < listed_.size(); ++reg) {
    if (listed_[reg] || !wants(reg)) continue;
    listed_[reg] = true;
    more = true;
  }
  if (more) invalidateFilter();
}

bool RegisterFilter::wants(std::size_t reg) const {
  const RegEntry& entry = sheet_.description().registers[reg];
  if (!active()) return entry.category == sheet_.category();
  if (only_ == OnlyRegisters::changed && !entry.changed()) return false;
  if (only_ == OnlyRegisters::favourites && !favourites_.has(entry)) return false;
  return has_words(reg);
}

bool RegisterFilter::has_words(std::size_t reg) const {
  if (words_.isEmpty()) return true;
  if (texts_.isEmpty()) make_texts();
  const QString& text = texts_[static_cast<qsizetype>(reg)];
  return std::ranges::all_of(
      words_, [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

void RegisterFilter::make_texts() const {
  const RegDescription& description = sheet_.description();
  for (std::size_t reg = 0; reg < description.registers.size(); ++reg) {
    const RegEntry& entry = description.registers[reg];
    QString text = qt_text(entry.address_text) + u'\n' + qt_text(entry.name);
    const auto category = static_cast<std::size_t>(entry.category);
    if (category < description.categories.size()) text += u'\n' + qt_text(description.categories[category]);
    const auto fields = description.fields_of(reg);
    for (std::size_t i = fields.first; i < fields.last; ++i)
      text += u'\n' + qt_text(description.bit_fields[i].name);
    texts_ << text;
  }
}

bool RegisterFilter::filterAcceptsRow(int row, const QModelIndex&) const {
  const auto reg = static_cast<std::size_t>(row);
  return reg < listed_.size() && listed_[reg];
}

}  // namespace qv5123
