#include "tuning/front.h"

#include <algorithm>

#include "tuning/brackets.h"
#include "tuning/layout.h"

namespace qv5123 {
namespace {

constexpr std::uint8_t kVideoMode = 0x6E;
constexpr std::uint8_t kColourOrder = 0x6F;
constexpr std::uint8_t kTdnMode = 0x70;
constexpr std::uint8_t kDelay = 0x71;
constexpr std::uint8_t kIrOnOff = 0x74;
constexpr std::uint8_t kWdrState = 0x89;
constexpr std::uint8_t kLedDimmer = 0x8D;
constexpr std::uint8_t kPolarity = 0xAA;
constexpr std::uint8_t kColorSuppress = 0xAB;

constexpr std::size_t kVideoModeEntry = 454;
constexpr std::size_t kColourOrderEntry = 456;
// The delay is kept twice, on purpose.
constexpr std::size_t kDelayEntry = 457;
constexpr std::size_t kDelayEntry2 = 458;
constexpr std::size_t kTdnEntry = 462;
constexpr std::size_t kIrEntry = 464;
constexpr std::size_t kWdrEntry = 549;
constexpr std::size_t kPolarityEntry = 551;
constexpr std::size_t kColorSuppressEntry = 552;
constexpr std::size_t kLedDimmerEntry = 582;

constexpr Encoding kFromOne{[](int index) { return index + 1; }, [](int stored) { return stored - 1; }};
constexpr Encoding kNotZero{[](int value) { return value; }, [](int stored) { return stored != 0 ? 1 : 0; }};
constexpr Encoding kSuppressed{[](int checked) { return checked != 0 ? 128 : 0; },
                               [](int stored) { return stored == 128 ? 1 : 0; }};

template <class Values, class Visitor>
void front_image_layout(Values& values, Visitor& visit) {
  visit.byte(kVideoModeEntry, values.video_mode);
  visit.byte(kColourOrderEntry, values.colour_order);
  visit.byte(kDelayEntry, values.delay);
  visit.byte(kDelayEntry2, values.delay);
  visit.byte(kTdnEntry, values.tdn_mode, kFromOne);
  visit.byte(kIrEntry, values.ir_on_off);
  for (std::size_t i = 0; i < kClamps.size(); ++i) visit.word(kClamps[i].entry, values.clamp[i]);
  visit.byte(kWdrEntry, values.wdr_state);
  visit.byte(kPolarityEntry, values.polarity, kNotZero);
  visit.byte(kLedDimmerEntry, values.led_dimmer);
}

template <class Values, class Visitor>
void front_reply_layout(Values& values, Visitor& visit) {
  visit.byte(0, values.video_mode);
  visit.byte(2, values.colour_order);
  visit.byte(4, values.tdn_mode, kFromOne);
  visit.byte(6, values.polarity, kNotZero);
  for (std::size_t i = 0; i < kClamps.size(); ++i) visit.word(8 + 4 * i, values.clamp[i]);
  for (std::size_t i = 0; i < kFrontFlagCount; ++i) {
    const FrontFlagPlace& place = kFrontFlags[i];
    if (place.position >= 0) visit.bit(static_cast<std::size_t>(place.position), place.bit, values.flags[i]);
  }
  visit.byte(34, values.color_suppress, kSuppressed);
  visit.byte(36, values.led_dimmer);
  visit.byte(38, values.wdr_state);
}

/// A value that goes into one entry and one register.
ControlEffect one_byte(std::size_t entry, std::uint8_t address, int value) {
  return {{{entry, low_byte(value)}}, {{address, low_byte(value)}}};
}

Batch clamp_write(const FrontValues& values, std::size_t i) {
  return word_write(kClamps[i].address, values.clamp[i]);
}

ControlEffect clamp_effect(const FrontValues& values, std::size_t i) {
  const int value = values.clamp[i];
  return {{{kClamps[i].entry, high_byte(value)}, {kClamps[i].entry + 1, low_byte(value)}},
          clamp_write(values, i)};
}

ControlEffect delay_effect(int delay) {
  ControlEffect effect = one_byte(kDelayEntry, kDelay, delay);
  effect.entries.push_back({kDelayEntry2, low_byte(delay)});
  return effect;
}

ControlEffect color_suppress_effect(bool checked) {
  ControlEffect effect = one_byte(kColorSuppressEntry, kColorSuppress, kSuppressed.encode(checked));
  effect.writes_file = true;
  return effect;
}

}  // namespace

void save_to_user_data(const FrontValues& values, UserDataImage& image) {
  ImageWriter writer(image);
  front_image_layout(values, writer);
}

void reload_from_user_data(FrontValues& values, const UserDataImage& image) {
  ImageReader reader(image);
  front_image_layout(values, reader);
}

std::optional<FrontValues> decode_front_reply(std::string_view reply, FrontValues current) {
  ReplyReader reader(reply);
  front_reply_layout(current, reader);
  if (reader.short_of()) return std::nullopt;
  return current;
}

std::string encode_front_reply(const FrontValues& values) {
  ReplyWriter writer;
  front_reply_layout(values, writer);
  return writer.text();
}

ControlEffect front_effect(FrontControl control, const FrontValues& values) {
  switch (control) {
    case FrontControl::VideoMode:
      return one_byte(kVideoModeEntry, kVideoMode, values.video_mode);
    case FrontControl::ColourOrder:
      return {{}, {{kColourOrder, low_byte(values.colour_order)}}};
    case FrontControl::SaveColourOrder:
      return one_byte(kColourOrderEntry, kColourOrder, values.colour_order);
    case FrontControl::TdnMode:
      return one_byte(kTdnEntry, kTdnMode, kFromOne.encode(values.tdn_mode));
    case FrontControl::Delay:
      return delay_effect(values.delay);
    case FrontControl::IrOnOff:
      return one_byte(kIrEntry, kIrOnOff, values.ir_on_off);
    case FrontControl::LedDimmer:
      return one_byte(kLedDimmerEntry, kLedDimmer, std::min(values.led_dimmer, kLedDimmerLimit));
    case FrontControl::Polarity:
      return one_byte(kPolarityEntry, kPolarity, values.polarity);
    case FrontControl::ClampR:
      return clamp_effect(values, 0);
    case FrontControl::ClampGr:
      return clamp_effect(values, 1);
    case FrontControl::ClampGb:
      return clamp_effect(values, 2);
    case FrontControl::ClampB:
      return clamp_effect(values, 3);
    case FrontControl::WdrState:
      return one_byte(kWdrEntry, kWdrState, values.wdr_state);
    case FrontControl::ColorSuppress:
      return color_suppress_effect(values.color_suppress);
  }
  return {};
}

void store(const ControlEffect& effect, UserDataImage& image) {
  for (const ImageEntry& entry : effect.entries) image.set_entry(entry.index, entry.value);
}

Batch flag_write(FrontFlag flag, bool checked) {
  return {{kFrontFlags[static_cast<std::size_t>(flag)].address, static_cast<std::uint8_t>(checked)}};
}

Traffic front_save_traffic(const FrontValues& values) {
  Traffic block = flushed_singly({{kColourOrder, low_byte(values.colour_order)},
                                  {kVideoMode, low_byte(values.video_mode)},
                                  {kTdnMode, low_byte(kFromOne.encode(values.tdn_mode))},
                                  {kDelay, low_byte(values.delay)},
                                  {kIrOnOff, low_byte(values.ir_on_off)},
                                  {kLedDimmer, low_byte(values.led_dimmer)},
                                  {kPolarity, low_byte(values.polarity)}});
  for (std::size_t i = 0; i < kClamps.size(); ++i) block.push_back(clamp_write(values, i));
  append(block, RegisterWrite{kWdrState, low_byte(values.wdr_state)});
  return kept(std::move(block));
}

}  // namespace qv5123
