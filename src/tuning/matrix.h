#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/layout.h"
#include "tuning/patch_chart.h"
#include "tuning/picker.h"

namespace qv5123 {

/// The video modes by their numbers on the chip.
enum VideoMode { kTvi, kAhd, kCvi, kCvbs };
inline constexpr int kVideoModes = 4;
inline constexpr int kMatrixLights = 3;  ///< "Outdoor", "Light-1", "Light-2"
inline constexpr int kMatrixRows = 3;    ///< output red, green, blue

/// Coefficients 0, 1, 2 of one row, each high byte then low byte of its 16-bit code.
using MatrixRowBytes = std::array<std::uint8_t, 6>;
/// By row and light source.
using ModeTable = std::array<std::array<MatrixRowBytes, kMatrixLights>, kMatrixRows>;
/// By row (output) and column (input).
using Coefficients = std::array<std::array<float, 3>, kMatrixRows>;
/// As fetched from the chip or typed; a component of 0 is not measured.
using MeasuredColour = std::array<std::uint32_t, 3>;
using MeasuredColours = std::array<MeasuredColour, kPatches>;

/// What the linear matrix page shows and edits.
struct MatrixValues {
  bool picker_on = false;
  bool manual_input = false;  ///< "Input Manually"
  PickerPosition picker;
  int step_index = 6;  ///< of "Move Step:", 0..7
  int patch_step = 0;  ///< position units from patch to patch; 0 leaves the picker where it is
  std::size_t patch = 0;
  MeasuredColours measured{};
  int light = 0;    ///< light source, 0..2
  int mode = kTvi;  ///< VideoMode
  int ratio = 100;  ///< correction ratio, percent, 0..100
  Coefficients coefficients{};
  std::array<ModeTable, kVideoModes> tables{};  ///< by VideoMode

  friend bool operator==(const MatrixValues&, const MatrixValues&) = default;
};

/// The four tables of 54 entries at 382 (TVI), 749 (AHD), 845 (CVI) and 635 (CVBS).
template <class Values, class Visitor>
void matrix_image_layout(Values& values, Visitor& visit) {
  constexpr std::size_t kBases[kVideoModes] = {382, 749, 845, 635};
  for (std::size_t mode = 0; mode < kVideoModes; ++mode) {
    for (std::size_t light = 0; light < kMatrixLights; ++light) {
      for (std::size_t row = 0; row < kMatrixRows; ++row) {
        for (std::size_t k = 0; k < 6; ++k) {
          visit.byte(kBases[mode] + 18 * light + 6 * row + k, values.tables[mode][row][light][k]);
        }
      }
    }
  }
}

/// The reply to kMatrixLoadTrigger, 432 characters: modes TVI, CVBS, AHD, CVI; in a mode the rows, in a row
/// the bytes, of each byte the three light sources.
template <class Values, class Visitor>
void matrix_reply_layout(Values& values, Visitor& visit) {
  std::size_t position = 0;
  for (VideoMode mode : {kTvi, kCvbs, kAhd, kCvi}) {
    for (std::size_t row = 0; row < kMatrixRows; ++row) {
      for (std::size_t k = 0; k < 6; ++k) {
        for (std::size_t light = 0; light < kMatrixLights; ++light, position += 2) {
          visit.byte(position, values.tables[mode][row][light][k]);
        }
      }
    }
  }
}

void save_to_user_data(const MatrixValues& values, UserDataImage& image);
/// Takes the tables and shows the matrix of the current mode and light source.
void reload_from_user_data(MatrixValues& values, const UserDataImage& image);

/// `current` with the tables of the reply, showing the matrix of the current mode and light source; nothing
/// when the reply is shorter than 432 characters.
std::optional<MatrixValues> decode_matrix_reply(std::string_view reply, MatrixValues current);
std::string encode_matrix_reply(const MatrixValues& values);
/// A write of 0 to it asks for the reply of "Load <- ISP".
inline constexpr std::uint8_t kMatrixLoadTrigger = 0x6A;

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

/// Row "Set": row 0..2 of the current mode and light source.
Traffic matrix_send_row(const MatrixValues& values, int row);
/// "File/Flash Save".
Traffic matrix_full_save(const MatrixValues& values);

}  // namespace qv5123
