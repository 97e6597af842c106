#include "state/sign_off.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/sha256.h"
#include "base/text.h"
#include "console/version_box.h"

namespace qv5123 {
namespace {

std::string version_text(const VersionNumbers& numbers) {
  return std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]);
}

}  // namespace

SignOffFile sign_off_file(std::string role, std::string name, std::string_view bytes) {
  return {std::move(role), std::move(name), bytes.size(), sha256(bytes)};
}

JournalSummary journal_summary(const WriteJournal& journal) {
  JournalSummary summary;
  summary.dropped = journal.dropped();
  std::map<std::string, std::size_t> controls;
  for (std::size_t i = 0; i < journal.size(); ++i) {
    const WriteRecord record = journal.at(i);
    if (is_question(record) || is_connection(record)) continue;
    ++summary.writes;
    for (std::size_t flush = 0; flush < record.flushes_left && flush < record.flushes.size(); ++flush)
      summary.registers += record.flushes[flush].size();
    if (record.result != WriteRecord::Result::sent) ++summary.failed;
    summary.last = iso_time(record.time);
    if (summary.first.empty()) summary.first = summary.last;
    const std::string name = record.page.empty() ? record.control : record.page + ": " + record.control;
    ++controls[name.empty() || name == ": " ? "others" : name];
  }
  summary.controls.assign(controls.begin(), controls.end());
  return summary;
}

void take_board(SignOff& report, const std::optional<Greeting>& told, const UserDataImage* file) {
  if (told) report.serial_number = told->serial_number;
  for (int slot = 0; (told || file) && slot < kVersionSlots; ++slot) {
    SignOffVersion& version = report.versions.emplace_back(SignOffVersion{kVersionSlotNames[slot], {}, {}});
    if (told) version.chip = version_text(told->versions[static_cast<std::size_t>(slot)]);
    if (file) version.file = version_text(load_version(*file, slot));
  }
}

Figures figures_of(const SignOff& report) {
  Figures figures;
  if (report.chart && report.chart_on_chip) {
    figures["mean color difference"] = report.chart->after.mean;
    figures["worst color difference"] = report.chart->after.worst;
  }
  if (report.chart) figures["mean color difference before"] = report.chart->before.mean;
  if (!report.lens.samples.empty()) {
    figures["lens ripple before"] = lens_line_ripple(report.lens);
    if (report.lens_on_chip)
      figures["lens ripple"] = lens_line_ripple(report.lens, report.parameter1, report.parameter2);
  }
  if (field_tells(report.field)) figures["field ripple"] = std::ranges::max(field_ripple(report.field));
  if (report.journal) figures["failed writes"] = static_cast<double>(report.journal->failed);
  double& unverified = figures["unverified values"];
  double& unlike = figures["values unlike file"];
  for (const SignOffPage& page : report.pages) {
    for (const SignOffValue& value : page.values) {
      if (value.judged) figures[page.name + "." + value.name] = *value.judged;
      if (value.known != "verified" && value.known != "read" && value.known != kNeverReported) ++unverified;
      if (value.unlike_file) ++unlike;
    }
  }
  return figures;
}

}  // namespace qv5123
