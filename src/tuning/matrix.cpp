#include "tuning/matrix.h"

#include <algorithm>
#include <charconv>

#include "base/hex.h"
#include "base/saturate.h"
#include "tuning/brackets.h"

namespace qv5123 {
namespace {

constexpr float kCodeUnit = 1024;
/// Of the 13 bits that the edits show.
constexpr int kLargestCode = 0x1FFF;

bool has_table(const MatrixValues& values) {
  return values.mode >= 0 && values.mode < kVideoModes && values.light >= 0 && values.light < kLightSources;
}

Traffic row_traffic(const ModeTable& table, int light, int row) {
  const auto address = static_cast<std::uint8_t>(kMatrixFirstRegister + 3 * light + row);
  Traffic traffic;
  for (int code : table[row][light]) {
    for (const RegisterWrite& byte : word_write(address, code)) append(traffic, byte);
  }
  return traffic;
}

Traffic mode_traffic(const MatrixValues& values, int mode) {
  Traffic traffic{{{kMatrixModeRegister, low_byte(mode)}}};
  for (int row = 0; row < kMatrixRows; ++row) {
    for (int light = 0; light < kLightSources; ++light) {
      append(traffic, row_traffic(values.tables[mode], light, row));
    }
  }
  return traffic;
}

}  // namespace

void MatrixPage::loaded(MatrixValues& values) {
  show_matrix(values);
}

int matrix_code(float coefficient) {
  return saturate_to_int(coefficient * kCodeUnit);
}

float matrix_coefficient(int code) {
  return static_cast<float>(kSigned16.decode(code & 0xFFFF)) / kCodeUnit;
}

std::string matrix_code_text(float coefficient) {
  return "0x" + upper_hex(static_cast<unsigned>(matrix_code(coefficient)) & 0x1FFFu, 4);
}

std::optional<float> matrix_coefficient_of(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  int code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code, 16);
  if (error != std::errc() || end != text.data() + text.size() || code < 0 || code > kLargestCode) {
    return std::nullopt;
  }
  return matrix_coefficient(code > kLargestCode / 2 ? code - kLargestCode - 1 : code);
}

Coefficients as_registers_hold(const Coefficients& coefficients) {
  Coefficients held{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    for (std::size_t j = 0; j < 3; ++j) held[r][j] = matrix_coefficient(matrix_code(coefficients[r][j]));
  }
  return held;
}

void show_matrix(MatrixValues& values) {
  if (!has_table(values)) return;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const MatrixCodes& codes = values.tables[values.mode][r][values.light];
    for (std::size_t j = 0; j < 3; ++j) values.coefficients[r][j] = matrix_coefficient(codes[j]);
  }
}

void store_matrix(MatrixValues& values) {
  if (!has_table(values)) return;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    MatrixCodes& codes = values.tables[values.mode][r][values.light];
    for (std::size_t j = 0; j < 3; ++j)
      codes[j] = kSigned16.decode(matrix_code(values.coefficients[r][j]) & 0xFFFF);
  }
}

void set_matrix_rows(MatrixValues& values) {
  auto& [red, green, blue] = values.coefficients;
  red[1] = 1 - red[0] - red[2];
  green[2] = 1 - green[0] - green[1];
  blue[1] = 1 - blue[0] - blue[2];
  store_matrix(values);
}

void clear_matrix(MatrixValues& values) {
  values.measured = {};
  values.coefficients = {};
}

void go_to_next_patch(MatrixValues& values) {
  if (values.patch_step <= 0) return;
  // A step beyond the picture only ever means its edge.
  const int step = std::min(values.patch_step, kPickerMaximumX);
  values.patch = (values.patch + 1) % kPatches;
  PickerPosition& picker = values.picker;
  picker = clamped(picker);
  if (values.patch % kPatchesInRow != 0) {
    picker.x += step;
  } else {
    picker.x -= (kPatchesInRow - 1) * step;
    picker.y += values.patch == 0 ? -3 * step : step;
  }
  picker = clamped(picker);
}

Traffic matrix_send_row(const MatrixValues& values, int row) {
  Traffic traffic = flushed_singly(
      {{kLightSourceRegister, low_byte(values.light)}, {kMatrixModeRegister, low_byte(values.mode)}});
  if (!has_table(values) || row < 0 || row >= kMatrixRows) return traffic;
  append(traffic, row_traffic(values.tables[values.mode], values.light, row));
  return traffic;
}

Traffic matrix_row(const MatrixValues& values, int mode, int light, int row) {
  Traffic traffic{{{kMatrixModeRegister, low_byte(mode)}}};
  append(traffic, row_traffic(values.tables[mode], light, row));
  return traffic;
}

Traffic matrix_send_copies(const MatrixValues& values, const std::vector<MatrixPlace>& places) {
  Traffic traffic;
  for (const MatrixPlace& place : places) {
    MatrixValues there = values;
    there.mode = place.mode;
    there.light = place.light;
    for (int row = 0; row < kMatrixRows; ++row) append(traffic, matrix_send_row(there, row));
  }
  append(traffic, flushed_singly({{kLightSourceRegister, low_byte(values.light)},
                                  {kMatrixModeRegister, low_byte(values.mode)}}));
  return traffic;
}

Traffic matrix_full_save(const MatrixValues& values) {
  Traffic body;
  for (int mode = 0; mode < kVideoModes; ++mode) append(body, mode_traffic(values, mode));
  return saved(std::move(body));
}

}  // namespace qv5123
