#include "tuning/awb_desk.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/delay.h"
#include "base/hex.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{50};

}  // namespace

AwbDesk::AwbDesk(DeskHost& host, UserDataImage& image) : PageDesk(host, image) {
  // Saving a page that was opened after the file must not replace what the file said.
  if (image.loaded()) open_with_image();
}

Traffic AwbDesk::control_traffic(int control) const {
  return awb_row_traffic(values_, awb_row(static_cast<AwbControl>(control)));
}

void AwbDesk::limit(const std::vector<std::size_t>& fields) {
  for (const std::size_t field : fields) {
    const int line = model().fields()[field].sent_by;
    if (line != Field::kNowhere) limit_awb_row(values_, awb_row(static_cast<AwbControl>(line)));
  }
}

void AwbDesk::send_line(AwbControl line) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::computed, std::string("Line ") + awb_row(line).name);
  limit_awb_row(values_, awb_row(line));
  view().show_values();
  send_control(std::string("Line ") + awb_row(line).name, static_cast<int>(line));
}

void AwbDesk::get_color() {
  if (!measuring_.running()) measuring_.start(measure(patch_));
}

/// The patch changes only when the chip answered for all three colours.
Task<> AwbDesk::measure(std::size_t patch) {
  std::array<int, 3> colour{};
  for (std::size_t part = 0; part < colour.size(); ++part)
    colour[part] = co_await link().wide_read(kAwbColourRegisters[part]);
  const auto missing = std::find(colour.begin(), colour.end(), -1);
  if (missing != colour.end()) {
    const int address = kAwbColourRegisters[static_cast<std::size_t>(missing - colour.begin())];
    host().show_failure("GET COLOR: no answer from 0xF" + upper_hex(static_cast<unsigned>(address), 3));
    co_return;
  }
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::measured, "GET COLOR");
  values_.patches[patch] = {colour[0], colour[1], colour[2]};
  view().show_values();
  host().show_status("GET COLOR: " + std::string(kAwbPatches[patch].caption) + " is " +
                     std::to_string(colour[0]) + ", " + std::to_string(colour[1]) + ", " +
                     std::to_string(colour[2]));
}

Task<> AwbDesk::save() {
  host().show_status("AWB Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  view().take_typed();
  co_await send_save(full_save(), "AWB Data Save Done.");
}

}  // namespace qv5123
