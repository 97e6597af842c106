#include "cli/page_reading.h"

#include <iterator>
#include <utility>

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

std::string full_name(const TuningModel& page, const FieldInfo& field) {
  return std::string(page.texts().name) + "." + field.name;
}

void Compared::add(const std::string& name, int one_number, int other_number) {
  ++compared;
  if (one_number == other_number) return;
  differences.push_back({{"name", name}, {one, one_number}, {other, other_number}});
  text += name + ": " + one + " " + std::to_string(one_number) + ", " + other + " " +
          std::to_string(other_number) + "\n";
}

void add_differences(const TuningModel& page, const Verification& found, Compared& result) {
  result.compared += found.reported - found.differences.size();
  for (const Verification::Difference& difference : found.differences)
    result.add(full_name(page, page.fields()[difference.field]), difference.chip, difference.sent);
}

Task<Verification> read_back(Chip& chip, const TuningModel& page, const ReadBack& how, int repairs) {
  const std::string name = page.texts().name;
  Verification found = co_await how.verify();
  for (; repairs > 0 && !found.to_repair().empty(); --repairs) {
    chip.out().remark(name + ": " + verification_text(page.fields(), found) + "; sending again\n");
    found = co_await how.repair(std::move(found));
  }
  if (found.end == Verification::End::no_answer)
    throw Complaint{ExitCode::negative, name + ": the chip did not answer"};
  if (found.end == Verification::End::unclear)
    throw Complaint{ExitCode::negative, name + ": the answer was damaged on the line"};
  co_return found;
}

Task<std::string> read_page_surely(Chip& chip, TuningModel& page) {
  const std::string name = page.texts().name;
  SureReading reading = co_await read_surely(chip.link(), page, chip.timeout());
  if (!reading.heard) throw Complaint{ExitCode::negative, name + ": the chip did not answer"};
  if (!reading.reply) throw Complaint{ExitCode::negative, name + ": the answer was damaged on the line"};
  co_return std::move(*reading.reply);
}

Task<std::string> read_page(Chip& chip, TuningModel& page) {
  const std::string name = page.texts().name;
  const Batch request{{page.texts().trigger, 0}};
  std::string reply = co_await chip.ask(request, name);
  if (!page.take_reply(reply)) throw Complaint{ExitCode::negative, name + ": the answer is too short"};
  co_return reply;
}

}  // namespace qv5123
