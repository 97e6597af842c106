#include "cli/page_reading.h"

#include <iterator>

#include "base/text.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {

std::vector<std::string> pages_named(const std::vector<std::string>& names) {
  std::vector<std::string> pages;
  for (const std::string& name : names) {
    if (name == "all") return {std::begin(kTuningPages), std::end(kTuningPages)};
    if (!is_page(name)) refuse("No page is named \"" + name + "\"; the pages are " + page_names());
    pages.push_back(name);
  }
  return pages;
}

std::string read_back_text(std::size_t values) {
  return counted(values, "value") + (values == 1 ? " read back agrees\n" : " read back agree\n");
}

Task<std::string> read_page(Chip& chip, TuningModel& page) {
  const std::string name = page.texts().name;
  const Batch request{{page.texts().trigger, 0}};
  std::string reply = co_await chip.ask(request, name);
  if (!page.take_reply(reply)) throw Complaint{ExitCode::negative, name + ": the answer is too short"};
  co_return reply;
}

}  // namespace qv5123
