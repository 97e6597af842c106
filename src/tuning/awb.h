#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"

/// The AWB page without its window: the six lines that tell white from colour, and the measured patches.
///
/// The chip reports the lines' ten words as 40 digits: "0100ff38.." is a slope of 1.0 and an intercept of
/// -200/256 for line A. Line A is sent as "@0d01*@0d00*@0eff*@0e38*" between the writes 0xFA = 1 and 0xFA =
/// 0. In the user data the words are entries 181 to 200, and three bytes for each patch follow from 213 on.
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

/// Register of the first word; the others have the next nine.
inline constexpr std::uint8_t kAwbFirstWord = 0x0D;

/// What the page shows. Everything starts at 0.
struct AwbValues {
  /// Fixed point with 8 fraction bits, in wire order: slope and intercept of A, B, C and D, then the
  /// intercepts of E and F.
  std::array<int, kAwbWordCount> words{};
  /// Measured colours, 0..255 each; rows 1 to 18 chromatic, 19 to 24 whites under six light sources.
  std::array<PatchColour, kAwbPatchCount> patches{};
  friend bool operator==(const AwbValues&, const AwbValues&) = default;
};

/// The page's controls that send values: the "S" of each line.
enum class AwbControl { line_a, line_b, line_c, line_d, line_e, line_f };

/// One row of "White Line Threshold": the words it edits.
struct AwbRow {
  const char* name;
  std::array<const char*, 2> words;  ///< their names
  std::size_t first_word;
  std::size_t word_count;
  bool limited;
};
/// By AwbControl.
inline constexpr std::array<AwbRow, 6> kAwbRows{{{"A", {"a_slope", "a_intercept"}, 0, 2, true},
                                                 {"B", {"b_slope", "b_intercept"}, 2, 2, true},
                                                 {"C", {"c_slope", "c_intercept"}, 4, 2, true},
                                                 {"D", {"d_slope", "d_intercept"}, 6, 2, true},
                                                 {"E", {"e_intercept"}, 8, 1, false},
                                                 {"F", {"f_intercept"}, 9, 1, false}}};
constexpr const AwbRow& awb_row(AwbControl line) {
  return kAwbRows[static_cast<std::size_t>(line)];
}

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

constexpr int limited_awb_word(int value) {
  return std::clamp(value, -kAwbLineLimit, kAwbLineLimit);
}
/// A word of A to D as the chip reports it. None lies above the limit, so what does is a negative one.
inline constexpr Encoding kAwbLineWord{[](int value) { return value; },
                                       [](int word) { return word > kAwbLineLimit ? word - 0x10000 : word; }};
/// The same in a file, which may hold what was typed in and not limited yet: that becomes the nearest that
/// the chip takes.
inline constexpr Encoding kAwbLineWordOfFile{
    [](int value) { return value; }, [](int word) { return limited_awb_word(kSigned16.decode(word)); }};
inline constexpr Encoding kAwbColour{[](int value) { return std::clamp(value, 0, 255); },
                                     [](int stored) { return stored; }};

/// The page: the lines' words, which the chip reports in ten times four digits, and the patches, which only a
/// file knows.
struct AwbPage {
  using Values = AwbValues;
  static constexpr DeskTexts kTexts{"awb", 0x36, "AWB Data Load Fail...", "Load Isp Ok.", "Load File Ok."};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    for (int line = 0; line < static_cast<int>(kAwbRows.size()); ++line)
      for (std::size_t i = 0; i < kAwbRows[line].word_count; ++i) word(line, i, values, visit);
    for (std::size_t k = 0; k < kAwbPatchCount; ++k) {
      component("r", "R", k, 0, values.patches[k].r, visit);
      component("g", "G", k, 1, values.patches[k].g, visit);
      component("b", "B", k, 2, values.patches[k].b, visit);
    }
  }

 private:
  static constexpr Range kWord{-0x8000, 0x7FFF};
  /// What the chip may report of A to D reaches down to the negative of 801, and has to be shown.
  static constexpr Range kTakenLineWord{kAwbLineLimit + 1 - 0x10000, 0x7FFF};

  template <class V, class Visitor>
  static constexpr void word(int line, std::size_t i, V& values, Visitor& visit) {
    const AwbRow& row = kAwbRows[line];
    const int at = static_cast<int>(row.first_word + i);
    Field field{.caption = {row.name, i + 1 == row.word_count ? "Intercept" : "Slope"},
                .entry = 181 + 2 * at,
                .reply = 4 * at,
                .range = kWord,
                .unit = "(256 is 1.0)",
                .address = kAwbFirstWord + at,
                .sent_by = line,
                .saved = true,
                .as = &kSigned16};
    if (row.limited) {
      field.range = {-kAwbLineLimit, kAwbLineLimit};
      field.taken = kTakenLineWord;
      field.as = &kAwbLineWord;
      field.entry_as = &kAwbLineWordOfFile;
    }
    visit.word({row.words[i]}, values.words[at], field);
  }
  template <class T, class Visitor>
  static constexpr void component(const char* name, const char* caption, std::size_t patch, int place,
                                  T& value, Visitor& visit) {
    visit.byte(Words("patch", name).numbered(patch + 1), value,
               {.caption = {kAwbPatches[patch].caption, caption},
                .entry = 213 + 3 * static_cast<int>(patch) + place,
                .taken = Range{0, 9999},
                .unit = "(drawn as 255 above)",
                .as = &kAwbColour});
  }
};
static_assert(fields_hold<AwbPage>());

/// Applies the limit of the row's "S" button.
void limit_awb_row(AwbValues& values, const AwbRow& row);
/// "S" of a row, after limit_awb_row(): its words, kept.
Traffic awb_row_traffic(const AwbValues& values, const AwbRow& row);
/// "File/Flash Save".
Traffic awb_full_save(const AwbValues& values);

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
