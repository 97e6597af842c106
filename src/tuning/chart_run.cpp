#include "tuning/chart_run.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/delay.h"
#include "base/hex.h"
#include "link/indirect_access.h"

namespace qv5123 {
namespace {

constexpr int kReadings = 3;
constexpr std::chrono::milliseconds kAnswer{500};
/// The picture goes on under the cursor; what is read before the next one is of the last place.
constexpr std::chrono::milliseconds kNextPicture{CommandLink::kWideWait};
/// By how much the brighter of two patches has to be so in the references before their order counts: a lens
/// and a lamp dim the chart's ends.
constexpr double kClearlyBrighter = 2;
constexpr double kBrighterGrey = 1.4;

struct Point {
  double x = 0;
  double y = 0;
};

/// The map that takes the unit square's corners, round it, to four points.
struct Perspective {
  double a, b, c, d, e, f, g, h;
  Point at(double u, double v) const {
    const double w = g * u + h * v + 1;
    return {(a * u + b * v + c) / w, (d * u + e * v + f) / w};
  }
};

double turn(const Point& from, const Point& over, const Point& to) {
  return (over.x - from.x) * (to.y - over.y) - (over.y - from.y) * (to.x - over.x);
}

/// Whether the four go round without a dent.
bool convex(const std::array<Point, 4>& p) {
  int left = 0, right = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const double way = turn(p[i], p[(i + 1) % 4], p[(i + 2) % 4]);
    left += way > 0 ? 1 : 0;
    right += way < 0 ? 1 : 0;
  }
  return left == 4 || right == 4;
}

Perspective perspective_of(const std::array<Point, 4>& p) {
  const double dx1 = p[1].x - p[2].x, dx2 = p[3].x - p[2].x, sx = p[0].x - p[1].x + p[2].x - p[3].x;
  const double dy1 = p[1].y - p[2].y, dy2 = p[3].y - p[2].y, sy = p[0].y - p[1].y + p[2].y - p[3].y;
  const double determinant = dx1 * dy2 - dx2 * dy1;
  const double g = (sx * dy2 - dx2 * sy) / determinant;
  const double h = (dx1 * sy - sx * dy1) / determinant;
  return {p[1].x - p[0].x + g * p[1].x,
          p[3].x - p[0].x + h * p[3].x,
          p[0].x,
          p[1].y - p[0].y + g * p[1].y,
          p[3].y - p[0].y + h * p[3].y,
          p[0].y,
          g,
          h};
}

double luma(const LinearRgb& colour) {
  return 0.2126 * colour[0] + 0.7152 * colour[1] + 0.0722 * colour[2];
}

LinearRgb as_light(const MeasuredColour& counts) {
  return {1.0 * counts[0], 1.0 * counts[1], 1.0 * counts[2]};
}

/// The patch measured before that this one should be clearly brighter or darker than, and is not.
std::optional<std::size_t> out_of_order(const MeasuredColours& measured, std::size_t patch, double level) {
  const double own = luma(kPatchReferences[patch]);
  for (std::size_t other = 0; other < kPatches; ++other) {
    if (other == patch || measured[other] == MeasuredColour{}) continue;
    const double clearly = is_grey(patch) && is_grey(other) ? kBrighterGrey : kClearlyBrighter;
    const double reference = luma(kPatchReferences[other]);
    const double seen = luma(as_light(measured[other]));
    if ((own > clearly * reference && level <= seen) || (reference > clearly * own && seen <= level))
      return other;
  }
  return std::nullopt;
}

Batch place_batch(PickerPosition place) {
  Batch batch;
  for (const IspByte& byte : picker_position_bytes(place))
    for (const RegisterWrite& write : isp_write(byte.address, byte.value)) batch.push_back(write);
  return batch;
}

Task<int> read_fast(CommandLink& link, int address, const CommandLink::Turn& turn) {
  for (int tries = 0; tries < 2; ++tries) {
    Batch request = isp_read_request(address);
    const JobResult sent = co_await link.send_request(std::move(request));
    if (sent.chunks_sent == 0) co_return -1;
    const std::optional<std::string> block = co_await link.next_block(kAnswer);
    if (block && block->size() == 2) co_return 16 * hex_value((*block)[0]) + hex_value((*block)[1]);
  }
  // What still does not answer is overdue from now on, for whoever asks next.
  co_return co_await link.wide_read(address, turn);
}

}  // namespace

std::optional<std::size_t> corner_of(std::size_t patch) {
  const auto found = std::ranges::find(kCornerPatches, patch);
  if (found == kCornerPatches.end()) return std::nullopt;
  return static_cast<std::size_t>(found - kCornerPatches.begin());
}

std::optional<std::array<PickerPosition, kPatches>> patch_places(const ChartCorners& corners) {
  std::array<Point, 4> points{};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    if (!corners[i]) return std::nullopt;
    points[i] = {1.0 * corners[i]->x, 1.0 * corners[i]->y};
  }
  if (!convex(points)) return std::nullopt;
  const Perspective perspective = perspective_of(points);
  std::array<PickerPosition, kPatches> places{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    const int at = static_cast<int>(i);
    const int row = at / kPatchesInRow;
    const Point middle = perspective.at(at % kPatchesInRow / 5.0, row / 3.0);
    places[i] = clamped({static_cast<int>(std::lround(middle.x)), static_cast<int>(std::lround(middle.y))});
  }
  return places;
}

Task<SteadyReading> read_steadily(CommandLink& link, PickerPosition place, std::array<int, 3> registers) {
  SteadyReading reading;
  const CommandLink::Turn turn = co_await link.turn();
  Batch there = place_batch(place);
  const JobResult sent = co_await link.send(std::move(there));
  reading.colour.fill(-1);
  if (sent.failed) co_return reading;
  co_await Delay(link.scheduler(), kNextPicture);
  std::array<std::array<int, kReadings>, 3> all{};
  for (int i = 0; i < kReadings; ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      all[c][static_cast<std::size_t>(i)] = co_await read_fast(link, registers[c], turn);
      if (all[c][static_cast<std::size_t>(i)] < 0) co_return reading;
    }
  }
  for (std::size_t c = 0; c < 3; ++c) {
    std::ranges::sort(all[c]);
    reading.colour[c] = all[c][1];
    reading.steady = reading.steady && all[c][2] - all[c][0] <= std::max(6, all[c][1] / 8);
  }
  co_return reading;
}

std::string reading_complaint(const MeasuredColours& measured, std::size_t patch,
                              const SteadyReading& reading) {
  const std::string name = patch_name(patch);
  const auto [lowest, highest] = std::ranges::minmax(reading.colour);
  if (lowest < 0) return name + ": the chip did not answer.";
  if (highest >= kClippedCounts) return name + " is clipped: it reads " + std::to_string(highest) + ".";
  // Of a saturated color one part may well be 0, but not all three.
  if (highest < kDarkCounts) return name + " is too dark: it reads " + std::to_string(highest) + ".";
  if (!reading.steady) return name + " is unsteady: its three readings differ.";
  const double level = luma({1.0 * reading.colour[0], 1.0 * reading.colour[1], 1.0 * reading.colour[2]});
  if (const auto other = out_of_order(measured, patch, level))
    return name + " is out of order: its brightness does not fit that of " + patch_name(*other) + ".";
  return {};
}

}  // namespace qv5123
