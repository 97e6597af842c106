#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"
#include "tuning/patch_chart.h"
#include "tuning/picker.h"
#include "tuning/video_mode.h"

namespace qv5123 {

inline constexpr int kMatrixRows = 3;  ///< output red, green, blue

inline constexpr std::array<const char*, kMatrixRows> kMatrixRowNames{"Red", "Green", "Blue"};
/// By row (output) and column (input).
inline constexpr std::array<std::array<const char*, 3>, kMatrixRows> kMatrixCodeNames{
    {{"R from R", "R from G", "R from B"},
     {"G from R", "G from G", "G from B"},
     {"B from R", "B from G", "B from B"}}};

/// Codes of coefficients 0, 1, 2 of one row, 1024 = 1.0, -32768..32767.
using MatrixCodes = std::array<int, 3>;
/// By row and light source.
using ModeTable = std::array<std::array<MatrixCodes, kLightSources>, kMatrixRows>;
/// By row (output) and column (input).
using Coefficients = std::array<std::array<float, 3>, kMatrixRows>;
/// As fetched from the chip or typed; a component of 0 is not measured.
using MeasuredColour = std::array<std::uint32_t, 3>;
using MeasuredColours = std::array<MeasuredColour, kPatches>;

/// What the linear matrix page shows and edits.
struct MatrixValues {
  bool picker_on = false;
  IspBytes picker_off;        ///< what switches the chip's picker off again;
                              ///< empty while it is off
  bool manual_input = false;  ///< "Input Manually"
  PickerPosition picker;
  int step_index = 6;  ///< of "Move Step:", 0..7
  int patch_step = 0;  ///< position units from patch to patch; 0 leaves the
                       ///< picker where it is
  std::size_t patch = 0;
  MeasuredColours measured{};
  int light = 0;    ///< light source, 0..2
  int mode = kTvi;  ///< video mode
  int ratio = 100;  ///< correction ratio, percent, see kCorrectionRatio
  Coefficients coefficients{};
  std::array<ModeTable, kVideoModes> tables{};  ///< by video mode

  friend bool operator==(const MatrixValues&, const MatrixValues&) = default;
};

/// Percent of the way from the identity to the fit.
inline constexpr Range kCorrectionRatio{0, 100};

/// Chooses the video mode of what follows.
inline constexpr std::uint8_t kMatrixModeRegister = 0xCA;
/// Takes the six bytes of the red row of "Outdoor". Green and blue follow, then the other light sources.
inline constexpr int kMatrixFirstRegister = 0x52;

/// The page's controls that send values: "Set" beside each row.
enum class MatrixControl { red_row, green_row, blue_row };

/// The page: four tables of 54 entries at 382 (TVI), 749 (AHD), 845 (CVI) and 635 (CVBS), in each the light
/// sources, of each the rows, of each three codes as words: 0xFF 0x00 is -0.25.
///
/// The reply is 432 characters in another order: modes TVI, CVBS, AHD, CVI; in a mode the rows, in a row the
/// bytes, of each byte the three light sources. So "1f....80" holds 0x1F80 as the first code of TVI's red row
/// outdoors, and what the dots stand for are the high bytes for the other light sources.
struct MatrixPage {
  using Values = MatrixValues;
  static constexpr DeskTexts kTexts{"matrix", 0x6A, "ISP Load Fail...", "", "Load File ok"};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    for (int mode = 0; mode < kVideoModes; ++mode)
      for (int light = 0; light < kLightSources; ++light)
        for (int r = 0; r < kMatrixRows; ++r) row({mode, light, r}, values.tables[mode][r][light], visit);
  }
  /// Shows the matrix of the current mode and light source.
  static void loaded(Values& values);
  /// Mode and light source come back with the matrix that belongs to them.
  static void keep_place(Values& values, const Values& now) {
    values.picker_on = now.picker_on;
    values.picker_off = now.picker_off;
    values.manual_input = now.manual_input;
    values.picker = now.picker;
    values.step_index = now.step_index;
    values.patch_step = now.patch_step;
    values.patch = now.patch;
  }

 private:
  struct Place {
    int mode;
    int light;
    int row;
  };
  template <class Codes, class Visitor>
  static constexpr void row(const Place& place, Codes& codes, Visitor& visit) {
    constexpr std::array kEntries{382, 749, 845, 635};
    constexpr std::array kReplies{0, 216, 324, 108};
    constexpr int kReplyByte = 2 * kLightSources;  // from a byte to the next of the same light source
    for (int j = 0; j < 3; ++j) {
      const int reply = kReplies[place.mode] + (6 * place.row + 2 * j) * kReplyByte + 2 * place.light;
      visit.word(name(place).at(static_cast<std::size_t>(j)), codes[j],
                 {.caption = {kVideoModeNames[place.mode], kLightSourceNames[place.light],
                              kMatrixCodeNames[place.row][j]},
                  .entry = kEntries[place.mode] + 18 * place.light + 6 * place.row + 2 * j,
                  .reply = reply,
                  .reply_low = reply + kReplyByte,
                  .range = {-0x8000, 0x7FFF},
                  .unit = "(1024 is 1.0)",
                  .address = kMatrixFirstRegister + 3 * place.light + place.row,
                  .sent_by = place.row,
                  .saved = true,
                  .as = &kSigned16});
    }
  }
  static constexpr Words name(const Place& place) {
    return {kVideoModeKeys[place.mode], kLightSourceKeys[place.light], kColourKeys[place.row]};
  }
};
static_assert(fields_hold<MatrixPage>());

/// What the edits of the codes take.
inline constexpr char kMatrixCodeRange[] = "0x0000..0x1FFF in 13-bit two's complement, 0x0400 is 1.0";

/// The register form of a coefficient, 1024 = 1.0, truncated. Saturates at the ends of int; no number is 0.
int matrix_code(float coefficient);
/// The coefficient that the low 16 bits of a code stand for.
float matrix_coefficient(int code);
/// What the edits show: the low 13 bits as "0x%04X".
std::string matrix_code_text(float coefficient);
/// The coefficient that such a text stands for, with or without "0x" and in either case: -4 up to 4. Nothing
/// for any other text.
std::optional<float> matrix_coefficient_of(std::string_view text);
/// The coefficients as the registers hold them, after rounding.
Coefficients as_registers_hold(const Coefficients& coefficients);

/// Makes the tables' matrix of the current mode and light source the current one.
void show_matrix(MatrixValues& values);
/// Puts the current matrix into the tables at the current mode and light source.
void store_matrix(MatrixValues& values);
/// Row "Set" before sending: derives one coefficient of each row so that the row sums to 1, and stores.
void set_matrix_rows(MatrixValues& values);
/// "Clear": measured patches and current matrix; the tables stay.
void clear_matrix(MatrixValues& values);

/// Selects the next patch, wrapping from the last to the first; with a patch step of at least 1 the picker
/// follows, along the row or to the start of the next. Nothing happens with a patch step of 0.
void go_to_next_patch(MatrixValues& values);

/// Whose matrix it is.
struct MatrixPlace {
  int mode = kTvi;  ///< VideoMode
  int light = 0;    ///< light source, 0..2
  friend bool operator==(const MatrixPlace&, const MatrixPlace&) = default;
};
/// "Copy matrix to...": for each place the traffic of its three "Set" buttons. At its end the chip's choice
/// of light source and video mode is that of the page again.
Traffic matrix_send_copies(const MatrixValues& values, const std::vector<MatrixPlace>& places);

/// Row "Set": row 0..2 of the current mode and light source.
Traffic matrix_send_row(const MatrixValues& values, int row);
/// The same of any mode and light source, as the full save sends it.
Traffic matrix_row(const MatrixValues& values, int mode, int light, int row);
/// "File/Flash Save".
Traffic matrix_full_save(const MatrixValues& values);

}  // namespace qv5123
