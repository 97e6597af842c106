#pragma once

#include <optional>
#include <string>
#include <vector>

#include "link/link_health.h"

namespace qv5123 {

/// A port and what was counted on its line.
struct LinkReport {
  std::string port;
  bool connected = false;
  LinkHealth health;
  /// Of the adapter, where the system tells it.
  std::optional<std::chrono::milliseconds> latency_timer = {};
};

struct LinkReportRow {
  std::string caption;
  std::string text;
};

/// The figures in words, for people.
std::vector<LinkReportRow> report_rows(const LinkReport& report);
/// All of it as lines "Round trip: median 24 ms, worst 110 ms", the hint at the end if there is one.
std::string report_text(const LinkReport& report);

/// Whether short answers take as long as with an adapter whose latency timer stands at its usual 16 ms.
bool waits_for_latency_timer(const LinkReport& report);
/// What makes the line slow, and what to do about it; empty where nothing does.
std::string latency_hint(const LinkReport& report);

}  // namespace qv5123
