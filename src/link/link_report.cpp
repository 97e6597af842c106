#include "link/link_report.h"

#include "link/port_list.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// A short answer comes at any time within the timer's period, so that half of it is the usual.
constexpr milliseconds kLongTimer{8};
constexpr int kUsualPart = 2;
/// Where nobody tells of a timer the time itself must speak for it: 16 ms, and some for the chip.
constexpr milliseconds kLeastIdle{12};
constexpr milliseconds kMostIdle{22};

/// "1,234,567"
std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string counted(std::uint64_t number, const std::string& one) {
  return grouped(number) + " " + one + (number == 1 ? "" : "s");
}

std::string ms(std::optional<milliseconds> time) {
  return std::to_string(time->count()) + " ms";
}

std::string round_trip(const LinkHealth& health) {
  if (!health.median()) return "not measured yet";
  return "median " + ms(health.median()) + ", worst " + ms(health.worst());
}

}  // namespace

std::vector<LinkReportRow> report_rows(const LinkReport& report) {
  const LinkCounts& counts = report.health.counts();
  const std::string replies =
      counts.replies_received == 1 ? "1 reply" : grouped(counts.replies_received) + " replies";
  return {
      {"Port", report.port.empty() ? "none yet" : report.port + (report.connected ? ", open" : ", closed")},
      {"Sent", counted(counts.bytes_sent, "byte") + ", " + counted(counts.frames_sent, "register write")},
      {"Received", counted(counts.bytes_received, "byte") + ", " + replies},
      {"Requests", grouped(counts.requests) + ", of which " + grouped(counts.retries) + " asked again and " +
                       grouped(counts.unanswered) + " given up"},
      {"Replies at fault", grouped(counts.refused) + " refused, " + grouped(counts.late) + " late"},
      {"Round trip", round_trip(report.health)},
      {"Reconnects", grouped(counts.reconnects)},
  };
}

std::string report_text(const LinkReport& report) {
  std::string text;
  for (const LinkReportRow& row : report_rows(report)) text += row.caption + ": " + row.text + "\n";
  return text + latency_hint(report);
}

bool waits_for_latency_timer(const LinkReport& report) {
  const std::optional<milliseconds> idle = report.health.idle();
  if (!idle) return false;
  if (report.latency_timer)
    return *report.latency_timer >= kLongTimer && *idle >= *report.latency_timer / kUsualPart;
  return *idle >= kLeastIdle && *idle <= kMostIdle;
}

std::string latency_hint(const LinkReport& report) {
  if (!waits_for_latency_timer(report)) return {};
  const std::string what = report.latency_timer
                               ? "The adapter's latency timer stands at " + ms(report.latency_timer)
                               : "This looks like an adapter's latency timer of 16 ms";
  return what + ": each short answer takes " + ms(report.health.idle()) +
         " longer than its bits do.\nTo lower it:\n" + lower_latency_text(report.port);
}

}  // namespace qv5123
