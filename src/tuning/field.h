#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A page names each of its values once, with everything that is true of it wherever it goes, as a layout: a
/// function template that shows every value to a visitor.
///
///     template <class Values, class Visitor>
///     static constexpr void fields(Values& values, Visitor& visit) {
///       visit.word({"delay"}, values.delay, {.caption = {"Delay"}, .entry = 457, .reply = 6, .address =
///       0x71});
///     }
///
/// The visitors of field_visitors.h turn the one layout into storing, loading and decoding, and into the list
/// of fields that everything else reads: edits, tooltips, the command line.
namespace qv5123 {

/// How a value is kept as a byte or a word: `encode` on the way out, `decode`, its inverse, on the way in.
struct Encoding {
  int (*encode)(int) = [](int value) { return value; };
  int (*decode)(int) = [](int stored) { return stored; };
};

inline constexpr Encoding kPlain{};
/// 16 bits read back as two's complement.
inline constexpr Encoding kSigned16{[](int value) { return value; },
                                    [](int stored) { return stored >= 0x8000 ? stored - 0x10000 : stored; }};
/// Not 0 is 1.
inline constexpr Encoding kFlag{[](int value) { return value != 0 ? 1 : 0; },
                                [](int stored) { return stored != 0 ? 1 : 0; }};

/// What edits take and the chip understands, both ends included.
struct Range {
  int lowest = 0;
  int highest = 255;
  constexpr bool holds(int number) const { return number >= lowest && number <= highest; }
  friend constexpr bool operator==(const Range&, const Range&) = default;
};

/// The words of a name or a caption, put together at run time only: "clamp.gr", "patch3.r", "Point 5 G".
struct Words {
  static constexpr int kNone = -1;
  constexpr Words() = default;
  constexpr Words(const char* first, const char* second = "", const char* third = "")
      : words{first, second, third} {}
  /// The same with `number` after the first word.
  constexpr Words numbered(std::size_t number) const {
    Words other = *this;
    other.number = static_cast<int>(number);
    return other;
  }
  /// The same with "[index]" at its end.
  constexpr Words at(std::size_t i) const {
    Words other = *this;
    other.index = static_cast<int>(i);
    return other;
  }
  /// "patch3.r", "r[5]".
  std::string name() const;
  /// "Patch 3 R".
  std::string caption() const;

  std::array<const char*, 3> words{"", "", ""};
  int number = kNone;
  int index = kNone;
};

enum class FieldSize { bit, byte, word };
/// Which way a value goes between its entry and the page.
enum class EntryUse {
  kept,             ///< stored and loaded with the page
  kept_by_control,  ///< only the value's own control stores it, and only the command line loads it
  only_loaded,      ///< the page loads it and never stores it
};
/// How a number is shown: as it is, in hex digits, or as one of `items`.
enum class FieldFormat { decimal, hex, list };

/// What is true of a value. What is not given does not exist: a value without an entry is in no file.
struct Field {
  static constexpr int kNowhere = -1;

  /// With row and column where the page has them.
  Words caption = {};
  /// Of the user data image, the first of two for a word.
  int entry = kNowhere;
  /// A second entry that holds the same byte.
  int also_entry = kNowhere;
  EntryUse entry_use = EntryUse::kept;
  /// Character position in the page's reply.
  int reply = kNowhere;
  /// Of a word's low byte, where it does not follow the high one.
  int reply_low = kNowhere;
  /// Of a bit in its byte, 0..7.
  int reply_bit = 0;
  Range range = {};
  /// What is taken and kept all the same where that is more than `range`; it is marked while it stands.
  std::optional<Range> taken = {};
  /// True when its page limits it before it is sent, also where it came from a file as it is.
  bool limited_when_sent = false;
  FieldFormat format = FieldFormat::decimal;
  std::span<const char* const> items = {};
  const char* unit = "";
  /// The chip's register.
  int address = kNowhere;
  /// Number of the page's control that sends it alone, or with few others.
  int sent_by = kNowhere;
  /// True when the page's full save sends it.
  bool saved = false;
  /// True when that save sends the number that was loaded, whatever the page shows: nothing sends another.
  bool saved_as_loaded = false;
  const Encoding* as = &kPlain;
  /// Where file and reply differ from it.
  const Encoding* entry_as = nullptr;
  const Encoding* reply_as = nullptr;

  constexpr const Encoding& in_entry() const { return entry_as ? *entry_as : *as; }
  constexpr const Encoding& in_reply() const { return reply_as ? *reply_as : *as; }
  constexpr const Range& takes() const { return taken ? *taken : range; }
  constexpr bool has_entry() const { return entry != kNowhere; }
  constexpr bool has_reply() const { return reply != kNowhere; }
};

/// A field as it stands in a page's list.
struct FieldInfo : Field {
  std::string name;  ///< within the page, "clamp.gr"
  FieldSize size = FieldSize::byte;

  /// The entries that hold it, ascending.
  std::vector<std::size_t> entries() const;
  /// "0..4095, register 0x64"; list items are counted.
  std::string range_text() const;
  /// A value of it as it is shown to people: "12", "0x1F", "Auto".
  std::string text(int number) const;
  /// What the chip reports once `number` was sent, and what a file gives back once it was stored: where a
  /// number is beyond what fits they are others.
  int held_by_chip(int number) const;
  int held_by_file(int number) const;
  /// Whether a write of the page brings it to the chip, alone or with the full save.
  bool sendable() const { return saved || sent_by != kNowhere; }
  /// Whether saving the page keeps it in a file.
  bool kept_in_file() const { return has_entry() && entry_use != EntryUse::only_loaded; }
};

}  // namespace qv5123
