// How the linear matrix page sends matrices: by the buttons of their rows.
#include <algorithm>
#include <cmath>
#include <utility>

#include "tuning/matrix_desk.h"
#include "tuning/matrix_diagnosis.h"

namespace qv5123 {
namespace {

std::string row_name(MatrixControl row) {
  return std::string(kMatrixRowNames[static_cast<int>(row)]) + " row";
}

/// What is doubtful about the current matrix beside `doubt`, a line each.
std::string reasons_against(const MatrixValues& values, const std::string& doubt) {
  std::string reasons = doubt.empty() ? doubt : doubt + "\n";
  for (const std::string& warning : matrix_warnings(values)) reasons += warning + "\n";
  return reasons;
}

}  // namespace

std::vector<WriteNote::Value> MatrixDesk::control_values(int control) const {
  std::vector<WriteNote::Value> values;
  if (values_.mode < 0 || values_.mode >= kVideoModes || control < 0 || control >= kMatrixRows) return values;
  for (const int& code : values_.tables[values_.mode][control][values_.light]) {
    const std::size_t at = field(code);
    values.push_back({at, model().fields()[at].held_by_chip(code)});
  }
  return values;
}

/// Calls `does` with each place and row that one of the fields is in.
template <class Does>
void MatrixDesk::each_row(const std::vector<std::size_t>& fields, Does does) const {
  for (int mode = 0; mode < kVideoModes; ++mode) {
    for (int light = 0; light < kLightSources; ++light) {
      for (int row = 0; row < kMatrixRows; ++row) {
        const std::size_t first = field(values_.tables[mode][row][light][0]);
        const auto is_of_row = [first](std::size_t f) { return f >= first && f < first + 3; };
        if (std::any_of(fields.begin(), fields.end(), is_of_row)) does(MatrixPlace{mode, light}, row);
      }
    }
  }
}

Traffic MatrixDesk::values_traffic(const std::vector<std::size_t>& fields) const {
  Traffic traffic;
  each_row(fields, [&](const MatrixPlace& place, int row) {
    append(traffic, matrix_row(values_, place.mode, place.light, row));
  });
  return traffic;
}

/// Each row as its "Set" sends it. At its end the chip's choice of light source and video mode is the page's.
Traffic MatrixDesk::own_traffic(const std::vector<std::size_t>& fields) const {
  Traffic traffic;
  MatrixValues there = values_;
  each_row(fields, [&](const MatrixPlace& place, int row) {
    there.mode = place.mode;
    there.light = place.light;
    append(traffic, matrix_send_row(there, row));
  });
  if (there.mode != values_.mode || there.light != values_.light)
    append(traffic, flushed_singly({{kLightSourceRegister, low_byte(values_.light)},
                                    {kMatrixModeRegister, low_byte(values_.mode)}}));
  return traffic;
}

/// The three codes of each row, which stand one behind the other.
std::vector<WriteNote::Value> MatrixDesk::own_values(const std::vector<std::size_t>& fields) const {
  std::vector<WriteNote::Value> values;
  const std::vector<int> numbers = model().numbers();
  for (std::size_t first = 0; first < numbers.size(); first += 3) {
    const auto is_of_row = [first](std::size_t f) { return f >= first && f < first + 3; };
    if (std::none_of(fields.begin(), fields.end(), is_of_row)) continue;
    for (std::size_t i = first; i < first + 3; ++i)
      values.push_back({i, model().fields()[i].held_by_chip(numbers[i])});
  }
  return values;
}

/// Only what was typed becomes a coefficient: a code holds less of one than the fit computed.
bool MatrixDesk::take_codes() {
  Coefficients taken = values_.coefficients;
  for (int row = 0; row < kMatrixRows; ++row) {
    for (int column = 0; column < 3; ++column) {
      float& coefficient = taken[row][column];
      const std::string text = code_text(row, column);
      // What is no number stands there as a code, and is sent as that.
      if (std::isfinite(coefficient) && text == matrix_code_text(coefficient)) continue;
      if (text.empty()) {
        host().show_failure(std::string(kMatrixCodeNames[row][column]) + " is empty: nothing was sent.");
        return false;
      }
      if (code_refused(row, column)) {
        host().show_failure(std::string(kMatrixCodeNames[row][column]) + " takes " + kMatrixCodeRange + ".");
        return false;
      }
      coefficient = *matrix_coefficient_of(text);
    }
  }
  values_.coefficients = taken;
  return true;
}

void MatrixDesk::set_row(MatrixControl row, Prompts& prompts) {
  with_consent(row_name(row), other_mode_text(), prompts, [this, row] { send_row(row); });
}

void MatrixDesk::copy_matrix(std::vector<MatrixPlace> places, Prompts& prompts) {
  if (places.empty()) return;
  with_consent("Copy matrix to...", {}, prompts, [this, places = std::move(places)] { send_copies(places); });
}

/// Calls `send` with the rows ready to be sent, unless the user, who is told what is doubtful about them,
/// says no: then nothing has changed.
void MatrixDesk::with_consent(std::string what, const std::string& doubt, Prompts& prompts,
                              std::function<void()> send) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, what);
  const Coefficients before = values_.coefficients;
  if (!take_codes()) return;
  MatrixValues ready = values_;
  set_matrix_rows(ready);
  std::string reasons = reasons_against(ready, doubt);
  if (reasons.empty() || reasons == accepted_) return send();
  values_.coefficients = before;
  spawn(ask_first(prompts, std::move(what), std::move(reasons), std::move(send)));
}

Task<> MatrixDesk::ask_first(Prompts& prompts, std::string what, std::string reasons,
                             std::function<void()> send) {
  const Answer answer = co_await prompts.ask(careful_question(reasons + "\nSend the matrix all the same?"));
  if (answer != Answer::yes) {
    host().show_status("The matrix was not sent.");
    co_return;
  }
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, std::move(what));
  if (!take_codes()) co_return;
  accepted_ = std::move(reasons);
  send();
}

std::array<MatrixCodes, kMatrixRows> MatrixDesk::codes_at(const MatrixPlace& place) const {
  std::array<MatrixCodes, kMatrixRows> codes{};
  for (std::size_t row = 0; row < kMatrixRows; ++row)
    codes[row] = values_.tables[place.mode][row][place.light];
  return codes;
}

/// A full save takes along what a fit has put into the tables: whatever the page shows by then, the doubts
/// are those of now.
void MatrixDesk::note_doubts() {
  const MatrixPlace place{values_.mode, values_.light};
  std::erase_if(doubtful_, [&](const Doubtful& other) { return other.place == place; });
  std::string reasons = reasons_against(values_, other_mode_text());
  if (!reasons.empty()) doubtful_.push_back({place, codes_at(place), std::move(reasons)});
}

std::string MatrixDesk::unread_saved() const {
  std::string all = TuningDesk::unread_saved();
  for (const auto& [place, codes, reasons] : doubtful_) {
    if (codes != codes_at(place) || reasons == accepted_) continue;
    all += std::string(all.empty() ? "" : "\n\n") + "The matrix of " + kVideoModeNames[place.mode] + ", " +
           kLightSourceNames[place.light] + ":\n" + reasons;
  }
  return all;
}

void MatrixDesk::send_row(MatrixControl row) {
  set_matrix_rows(values_);
  show_current();
  send_control(row_name(row), static_cast<int>(row));
}

void MatrixDesk::send_copies(const std::vector<MatrixPlace>& places) {
  set_matrix_rows(values_);
  std::vector<std::size_t> fields;
  for (const MatrixPlace& place : places) {
    for (int row = 0; row < kMatrixRows; ++row) {
      MatrixCodes& codes = values_.tables[place.mode][row][place.light];
      codes = values_.tables[values_.mode][row][values_.light];
      for (const int& code : codes) fields.push_back(field(code));
    }
  }
  show_current();
  send_noted(
      "Matrix copied to " + std::to_string(places.size()) + (places.size() == 1 ? " place" : " places"),
      matrix_send_copies(values_, places), own_values(fields));
}

}  // namespace qv5123
