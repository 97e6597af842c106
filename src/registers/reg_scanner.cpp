#include "registers/reg_scanner.h"

#include <algorithm>
#include <utility>

namespace qv5123 {
namespace {

std::vector<std::size_t> find_line_ends(std::u16string_view text) {
  std::vector<std::size_t> ends;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool first_of_pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
    if (text[i] == u'\n' || (text[i] == u'\r' && !first_of_pair)) ends.push_back(i);
  }
  return ends;
}

void split_lines(std::u16string& text) {
  for (char16_t& c : text) {
    if (c == u'\r' || c == u'\n') c = 0;
  }
}

// Meant for "#$", but one of the two is enough, whatever stands in the other's place. Runs after the lines
// were split, so the breaks it makes stay inside their values.
void make_line_breaks(std::u16string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool has_next = i + 1 < text.size();
    if (text[i] != u'#' && !(has_next && text[i + 1] == u'$')) continue;
    text[i] = u'\r';
    if (has_next) text[i + 1] = u'\n';
  }
}

}  // namespace

RegScanner::RegScanner(std::u16string text) : text_(std::move(text)), line_ends_(find_line_ends(text_)) {
  split_lines(text_);
  make_line_breaks(text_);
}

std::size_t RegScanner::end_of_string(std::size_t from) const {
  return std::min(text_.find(u'\0', from), text_.size());
}

void RegScanner::next_line() {
  cursor_ = std::min(text_.find_first_not_of(u'\0', end_of_string(cursor_)), text_.size());
  line_start_ = cursor_;
}

bool RegScanner::line_starts_with(std::u16string_view tag) const {
  return text_.compare(cursor_, tag.size(), tag) == 0;
}

std::optional<std::u16string_view> RegScanner::attribute(std::u16string_view name) {
  const std::u16string_view text = text_;
  const std::u16string_view line = text.substr(cursor_, end_of_string(cursor_) - cursor_);
  const std::size_t found = line.find(name);
  if (found == line.npos) return std::nullopt;
  // Where a name ends its line, this lands in the next one. The text's end is as far as it goes.
  const std::size_t start = std::min(cursor_ + found + name.size() + 2, text.size());
  const std::size_t end = end_of_string(start);
  const std::size_t quote = text.substr(start, end - start).find(u'"');
  if (quote == text.npos) return text.substr(start, end - start);
  text_[start + quote] = 0;
  cursor_ = start + quote + 1;
  return text.substr(start, quote);
}

std::size_t RegScanner::line_number() const {
  const auto before = std::lower_bound(line_ends_.begin(), line_ends_.end(), line_start_);
  return static_cast<std::size_t>(before - line_ends_.begin()) + 1;
}

}  // namespace qv5123
