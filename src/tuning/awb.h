#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "console/user_data_image.h"
#include "link/register_write.h"

/// The AWB page without its window: the six lines that tell white from colour, and the measured patches.
namespace qv5123 {

inline constexpr std::size_t kAwbWordCount = 10;
inline constexpr std::size_t kAwbPatchCount = 24;
/// Rows A to D keep slope and intercept within +-800 when set; E and F are sent as typed.
inline constexpr int kAwbLineLimit = 800;

struct PatchColour {
  int r = 0;
  int g = 0;
  int b = 0;
  friend bool operator==(const PatchColour&, const PatchColour&) = default;
};

/// What the page shows. Everything starts at 0.
struct AwbValues {
  /// Fixed point with 8 fraction bits, in wire order: slope and intercept of A, B, C and D, then the
  /// intercepts of E and F.
  std::array<int, kAwbWordCount> words{};
  /// Measured colours, 0..255 each; rows 1 to 18 chromatic, 19 to 24 whites under six light sources.
  std::array<PatchColour, kAwbPatchCount> patches{};
  friend bool operator==(const AwbValues&, const AwbValues&) = default;
};

/// One row of "White Line Threshold": the words it edits.
struct AwbRow {
  char name;
  std::size_t first_word;
  std::size_t word_count;
  bool limited;
};
inline constexpr std::array<AwbRow, 6> kAwbRows{{{'A', 0, 2, true},
                                                 {'B', 2, 2, true},
                                                 {'C', 4, 2, true},
                                                 {'D', 6, 2, true},
                                                 {'E', 8, 1, false},
                                                 {'F', 9, 1, false}}};

/// A patch of the chart: its caption, and for the chromatic rows the published sRGB colour.
struct AwbPatch {
  const char* caption;
  PatchColour reference;
  /// The whites: drawn black and larger.
  bool highlighted;
};
inline constexpr std::array<AwbPatch, kAwbPatchCount> kAwbPatches{{
    {"Dark skin", {115, 82, 68}, false},
    {"Light skin", {194, 150, 130}, false},
    {"Blue sky", {98, 122, 157}, false},
    {"Foliage", {87, 108, 67}, false},
    {"Blue flower", {133, 128, 177}, false},
    {"Bluish green", {103, 189, 170}, false},
    {"Orange", {214, 126, 44}, false},
    {"Purplish blue", {80, 91, 166}, false},
    {"Moderate red", {193, 90, 99}, false},
    {"Purple", {94, 60, 108}, false},
    {"Yellow green", {157, 188, 64}, false},
    {"Orange yellow", {224, 163, 46}, false},
    {"Blue", {56, 61, 150}, false},
    {"Green", {70, 148, 73}, false},
    {"Red", {175, 54, 60}, false},
    {"Yellow", {231, 199, 31}, false},
    {"Magenta", {187, 86, 149}, false},
    {"Cyan", {8, 133, 161}, false},
    {"8700K or Over", {0, 0, 0}, true},
    {"6500K", {0, 0, 0}, true},
    {"4100K", {0, 0, 0}, true},
    {"3000K", {0, 0, 0}, true},
    {"2800K", {0, 0, 0}, true},
    {"2400K or Under", {0, 0, 0}, true},
}};

/// Copies the values into entries 181..200 and 213..284, patches limited to 0..255.
void save_to_user_data(const AwbValues& values, UserDataImage& image);
/// The reverse; the words of A to D come back limited to -800..800, those of E and F as they were saved.
void reload_from_user_data(AwbValues& values, const UserDataImage& image);

/// Register that asks the chip for the ten words.
inline constexpr std::uint8_t kAwbQuery = 0x36;
/// The answer to kAwbQuery; the patches stay those of `current`. Nothing when the reply is too short.
std::optional<AwbValues> decode_awb_reply(std::string_view reply, AwbValues current);
/// The answer as the chip gives it, 40 hex digits.
std::string encode_awb_reply(const AwbValues& values);

/// Applies the limit of the row's "S" button.
void limit_awb_row(AwbValues& values, const AwbRow& row);
/// "S" of a row, after limit_awb_row: its words, kept.
Traffic awb_row_traffic(const AwbValues& values, const AwbRow& row);
/// "File/Flash Save".
Traffic awb_save_traffic(const AwbValues& values);

/// The buttons of one write each.
inline constexpr RegisterWrite kAwbMarkNone{0x32, 0};
inline constexpr RegisterWrite kAwbMarkSet{0x33, 0};
inline constexpr RegisterWrite kAwbMarkCheck{0x34, 0};
inline constexpr RegisterWrite kAwbUp{reg::kOsdKey, 0};
inline constexpr RegisterWrite kAwbDown{reg::kOsdKey, 1};
inline constexpr RegisterWrite kAwbLeft{reg::kOsdKey, 2};
inline constexpr RegisterWrite kAwbRight{reg::kOsdKey, 3};

/// ISP registers whose bytes are red, green and blue under the cursor, as "GET COLOR" asks for them.
inline constexpr std::array<int, 3> kAwbColourRegisters{0xC92, 0xC96, 0xC9A};
}  // namespace qv5123
