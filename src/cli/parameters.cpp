#include "cli/parameters.h"

#include <algorithm>
#include <utility>

#include "cli/complaint.h"
#include "cli/name_patterns.h"
#include "cli/numbers.h"

namespace qv5123 {
namespace {

constexpr int kLowest = -0x8000;
constexpr int kHighest = 0xFFFF;

/// A pattern, or the name of one value.
struct Meant {
  std::string text;
  bool is_name = false;

  bool means(const std::string& name) const { return is_name ? text == name : stands_for(text, name); }
};

bool is_meant(const std::vector<Meant>& all, const std::string& name) {
  return all.empty() ||
         std::any_of(all.begin(), all.end(), [&name](const Meant& meant) { return meant.means(name); });
}

void check_pattern(const std::string& pattern, const std::vector<PageParameters>& pages) {
  for (const PageParameters& page : pages)
    for (const std::size_t i : page.fields)
      if (stands_for(pattern, page.name(i))) return;
  refuse("No value is named \"" + pattern + "\"; \"param list\" has all names");
}

}  // namespace

std::string PageParameters::name(std::size_t i) const {
  return std::string(page->texts().name) + "." + field(i).name;
}

std::vector<PageParameters> all_parameters() {
  std::vector<PageParameters> pages;
  for (const char* name : kTuningPages) {
    PageParameters& page = pages.emplace_back();
    page.page = make_model(name);
    for (std::size_t i = 0; i < page.page->fields().size(); ++i) page.fields.push_back(i);
  }
  return pages;
}

bool is_value_name(const std::string& name) {
  for (const PageParameters& page : all_parameters())
    for (const std::size_t i : page.fields)
      if (page.name(i) == name) return true;
  return false;
}

std::vector<PageParameters> find_parameters(const std::vector<std::string>& patterns) {
  std::vector<PageParameters> pages = all_parameters();
  std::vector<Meant> meant;
  for (const std::string& pattern : patterns) {
    check_pattern(pattern, pages);
    meant.push_back({pattern, is_value_name(pattern)});
  }
  for (PageParameters& page : pages)
    std::erase_if(page.fields, [&](std::size_t i) { return !is_meant(meant, page.name(i)); });
  std::erase_if(pages, [](const PageParameters& page) { return page.fields.empty(); });
  return pages;
}

Assignment read_assignment(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) refuse("\"" + text + "\" is not of the form NAME=VALUE");
  std::string name = text.substr(0, equals);
  const int number = number_in(name, text.substr(equals + 1), kLowest, kHighest);
  const bool is_name = is_value_name(name);
  return {std::move(name), is_name, number};
}

void assign(const Assignment& assignment, const PageParameters& parameters, TuningModel& to) {
  for (const std::size_t i : parameters.fields) {
    if (!Meant{assignment.pattern, assignment.is_name}.means(parameters.name(i))) continue;
    to.set_number(i, assignment.number);
    const int taken = to.numbers()[i];
    if (taken == assignment.number) continue;
    refuse(parameters.name(i) + ": " + std::to_string(assignment.number) + " is beyond " +
           parameters.field(i).range_text());
  }
}

}  // namespace qv5123
