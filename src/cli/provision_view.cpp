#include "cli/provision_view.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"
#include "cli/terminal.h"

namespace qv5123 {
namespace {

constexpr std::size_t kWidth = 79;
constexpr std::size_t kPortWidth = 16;

std::string padded(std::string text, std::size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string time_text(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(time).count();
  return seconds < 60 ? std::to_string(seconds) + " s"
                      : std::to_string(seconds / 60) + " min " + std::to_string(seconds % 60) + " s";
}

std::string seconds_text(std::chrono::milliseconds time) {
  return fixed(static_cast<double>(time.count()) / 1000, 1) + " s";
}

std::string row(const PlaceState& place, std::size_t steps) {
  std::string text = padded(place.port, kPortWidth) + " ";
  if (place.phase != PlaceState::Phase::working)
    return (text + place.serial + " " + place.words).substr(0, kWidth);
  text += padded(std::to_string(place.percent) + " %", 6) + std::to_string(place.step_number) + "/" +
          std::to_string(steps) + " " + padded(place.step, 14) + " " + time_text(place.left) + " left";
  return text.substr(0, kWidth);
}

}  // namespace

void ProvisionView::step_began(const PlaceState& place) {
  if (stderr_is_terminal()) return;
  out_.remark(place.port + ": " + std::to_string(place.step_number) + "/" +
              std::to_string(recipe_.steps.size()) + " " + place.step + "\n");
}

void ProvisionView::unit_over(const PlaceState& place, const UnitRecord& record) {
  clear();
  const std::string step = record.failed_step().empty() ? "" : record.failed_step() + ": ";
  const std::string why = record.passed() ? "" : "  " + step + record.why;
  out_.event(RecordJson::parse(record_line(record, recipe_)),
             record.verdict + "  " + place.port + "  " + (record.serial.empty() ? "-" : record.serial) +
                 "  " + seconds_text(record.time) + why + "\n");
}

void ProvisionView::trouble(const std::string& text) {
  clear();
  out_.warning(text);
}

void ProvisionView::clear() {
  if (drawn_ == 0) return;
  std::fprintf(stderr, "\x1b[%zuA\x1b[J", drawn_);
  std::fflush(stderr);
  drawn_ = 0;
}

void ProvisionView::draw(const std::vector<PlaceState>& places) {
  if (out_.quiet() || !stderr_is_terminal()) return;
  std::string text;
  for (const PlaceState& place : places) text += visible(row(place, recipe_.steps.size())) + "\x1b[K\n";
  clear();
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
  drawn_ = places.size();
}

}  // namespace qv5123
