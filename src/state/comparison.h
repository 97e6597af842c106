#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/user_data_image.h"
#include "state/sending_sum.h"
#include "state/value_states.h"
#include "state/write_journal.h"

namespace qv5123 {

/// Where a value can be.
enum class Place {
  page,
  chip,
  file,
  other,  ///< a second file, or what the chip held at a moment of a journal
};

/// The values of one more place, beside those that ValueStates knows.
struct OtherValues {
  std::string title;                                     ///< "old.dat"
  bool of_chip = false;                                  ///< whether a chip held them, and not a file
  std::vector<std::vector<std::optional<int>>> numbers;  ///< by page and field
};

/// What a setting file holds.
OtherValues values_in_file(const ValueStates& states, const UserDataImage& image, std::string title);
/// What a journal's chip held.
OtherValues values_in_journal(const ValueStates& states, const KnownValues& known, std::string title);

/// Which values a comparison shows.
struct CompareFilter {
  /// All between its blanks must occur in page, name or caption, in small letters or capitals.
  std::string words;
  enum class Show { all, differences, between };
  Show show = Show::differences;
  /// Two places, of Show::between.
  Place one = Place::page;
  Place two = Place::chip;
};

/// A value's place among all.
struct ValueId {
  std::size_t page = 0;   ///< its place in kTuningPages
  std::size_t field = 0;  ///< its place in the page's list of fields
  friend bool operator==(const ValueId&, const ValueId&) = default;
};

/// All values of the tuning pages side by side, page after page: what the page holds, the chip, the setting
/// file, and one more place. Values are counted in that order.
class Comparison {
 public:
  /// The states must outlive it.
  explicit Comparison(const ValueStates& states);

  /// Takes what the states know by now.
  void look_again();
  void set_other(std::optional<OtherValues> other) { other_ = std::move(other); }
  const std::optional<OtherValues>& other() const { return other_; }

  std::size_t size() const { return ids_.size(); }
  const ValueId& id(std::size_t value) const { return ids_[value]; }
  const FieldInfo& field(std::size_t value) const;
  /// "awb".
  const std::string& page_name(std::size_t value) const;
  /// "awb.a_slope".
  std::string full_name(std::size_t value) const {
    return source_.full_name(ids_[value].page, ids_[value].field);
  }
  const ValueState& state(std::size_t value) const { return states_[ids_[value].page][ids_[value].field]; }
  /// Nothing where it is not known, or nobody keeps it there.
  std::optional<int> number(std::size_t value, Place place) const;
  /// As it is shown to people; empty where it is not known.
  std::string text(std::size_t value, Place place) const;

  /// Whether it is known in both places and another one there. Numbers that become the same once they are
  /// sent or stored do not differ.
  bool differs(std::size_t value, Place one, Place two) const;
  bool differs(std::size_t value) const;
  /// Whether it differs from the first place where it is known.
  bool stands_out(std::size_t value, Place place) const;

  /// The values that a filter lets through, ascending.
  std::vector<std::size_t> find(const CompareFilter& filter) const;

 private:
  bool matches(std::size_t value, const CompareFilter& filter, const std::vector<std::string>& words) const;
  bool holds_as_chip(Place place) const;

  const ValueStates& source_;
  std::vector<ValueId> ids_;
  std::vector<std::string> searched_;  ///< in small letters
  std::vector<std::vector<ValueState>> states_;
  std::optional<OtherValues> other_;
};

/// Values of one page that are taken over or sent.
struct PageValues {
  std::size_t page = 0;
  std::vector<WriteNote::Value> values;

  std::vector<std::size_t> fields() const;
};

/// What the pages would take of `chosen` values from a place: what is known there and not the same in the
/// page. All of it where the page was not opened.
std::vector<PageValues> values_to_take(const Comparison& comparison, const std::vector<std::size_t>& chosen,
                                       Place from);

/// What of `chosen` values goes from their pages to the chip.
struct ValuesToSend {
  std::vector<PageValues> pages;
  std::vector<std::string> texts;  ///< "awb.a_slope: chip 12, page 20"
  std::size_t unsendable = 0;      ///< nothing sends them alone
  std::size_t unopened = 0;        ///< their page holds nothing yet
};
ValuesToSend values_to_send(const Comparison& comparison, const std::vector<std::size_t>& chosen);
/// The question before they are sent.
std::string sending_question(const ValuesToSend& values, const SendingSum& sum);

/// `values` of a comparison as lines of text with tabs between their parts, below a line of titles, as
/// tables take them.
std::string comparison_as_text(const Comparison& comparison, const std::vector<std::size_t>& values);
/// The same as CSV with bare numbers, and with what is known of the chip's: "read", "verified", "sent".
std::string comparison_as_csv(const Comparison& comparison, const std::vector<std::size_t>& values);

/// "not known", "sent, not read back", "read", "verified".
const char* known_text(Known how);

}  // namespace qv5123
