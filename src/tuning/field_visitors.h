#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "console/user_data_image.h"
#include "link/reply_text.h"
#include "tuning/field.h"

/// What becomes of a layout. A page is a type with its `Values` and a static `fields(values, visitor)`.
namespace qv5123 {

/// Lets a visitor treat all sizes alike: `visit(name, value, field, size)`.
template <class Visitor>
class EachField {
 public:
  template <class T>
  constexpr void bit(const Words& name, T& value, const Field& field) {
    self().visit(name, value, field, FieldSize::bit);
  }
  template <class T>
  constexpr void byte(const Words& name, T& value, const Field& field) {
    self().visit(name, value, field, FieldSize::byte);
  }
  template <class T>
  constexpr void word(const Words& name, T& value, const Field& field) {
    self().visit(name, value, field, FieldSize::word);
  }

 private:
  constexpr Visitor& self() { return static_cast<Visitor&>(*this); }
};

/// Stores values into the user data image: all that the page keeps, or one alone, whoever keeps it.
class FieldStore : public EachField<FieldStore> {
 public:
  explicit FieldStore(UserDataImage& image, std::optional<std::size_t> only = {})
      : image_(image), only_(only) {}
  template <class T>
  void visit(const Words&, const T& value, const Field& field, FieldSize size) {
    const std::size_t at = at_++;
    if (!field.has_entry() || (only_ ? *only_ != at : field.entry_use != EntryUse::kept)) return;
    const int stored = field.in_entry().encode(static_cast<int>(value));
    const auto entry = static_cast<std::size_t>(field.entry);
    if (size == FieldSize::word)
      image_.set_word(entry, stored);
    else
      image_.set_entry(entry, stored);
    if (field.also_entry != Field::kNowhere)
      image_.set_entry(static_cast<std::size_t>(field.also_entry), stored);
  }

 private:
  UserDataImage& image_;
  std::optional<std::size_t> only_;
  std::size_t at_ = 0;
};

/// Loads values from the user data image; with `all` also those that only their controls keep.
class FieldLoad : public EachField<FieldLoad> {
 public:
  explicit FieldLoad(const UserDataImage& image, bool all = false) : image_(image), all_(all) {}
  template <class T>
  void visit(const Words&, T& value, const Field& field, FieldSize size) {
    if (!field.has_entry() || (!all_ && field.entry_use == EntryUse::kept_by_control)) return;
    const auto entry = static_cast<std::size_t>(field.entry);
    const int stored = size == FieldSize::word ? image_.word(entry) : image_.entry(entry);
    value = static_cast<T>(field.in_entry().decode(stored));
  }

 private:
  const UserDataImage& image_;
  bool all_;
};

/// Decodes values from a reply. Further characters behind the last of them are left alone, for a chip may
/// report more than a page knows. short_of() tells whether the reply ended before the last of them, in which
/// case what was read must not be shown.
class FieldDecode : public EachField<FieldDecode> {
 public:
  explicit FieldDecode(std::string_view reply) : reply_(reply) {}
  template <class T>
  void visit(const Words&, T& value, const Field& field, FieldSize size) {
    if (!field.has_reply()) return;
    int number = byte_at(field.reply);
    if (size == FieldSize::word)
      number = number * 256 + byte_at(field.reply_low == Field::kNowhere ? field.reply + 2 : field.reply_low);
    if (size == FieldSize::bit) number = number >> field.reply_bit & 1;
    value = static_cast<T>(field.in_reply().decode(number));
  }
  bool short_of() const { return needed_ > reply_.size(); }

 private:
  int byte_at(int position) {
    const auto at = static_cast<std::size_t>(position);
    needed_ = std::max(needed_, at + 2);
    return reply_byte_at(reply_, at);
  }
  std::string_view reply_;
  std::size_t needed_ = 0;
};

/// Makes the list of the fields.
class FieldList : public EachField<FieldList> {
 public:
  template <class T>
  void visit(const Words& name, const T&, const Field& field, FieldSize size) {
    fields.push_back({field, name.name(), size});
  }
  std::vector<FieldInfo> fields;
};

/// Takes the numbers of all fields, in their order.
class FieldNumbers : public EachField<FieldNumbers> {
 public:
  template <class T>
  void visit(const Words&, const T& value, const Field&, FieldSize) {
    numbers.push_back(static_cast<int>(value));
  }
  std::vector<int> numbers;
};

/// Sets one of them.
class FieldSet : public EachField<FieldSet> {
 public:
  FieldSet(std::size_t field, int number) : field_(field), number_(number) {}
  template <class T>
  void visit(const Words&, T& value, const Field&, FieldSize) {
    if (at_++ == field_) value = static_cast<T>(number_);
  }

 private:
  std::size_t field_;
  int number_;
  std::size_t at_ = 0;
};

/// Finds the place of a value in the list by the value itself, so that nobody has to repeat its name.
class FieldFind : public EachField<FieldFind> {
 public:
  explicit FieldFind(const void* value) : value_(value) {}
  template <class T>
  void visit(const Words&, const T& value, const Field&, FieldSize) {
    if (static_cast<const void*>(&value) == value_) found = at_;
    ++at_;
  }
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
  std::size_t found = kNowhere;

 private:
  const void* value_;
  std::size_t at_ = 0;
};

/// Holds a layout to what must be true of it, while it is compiled: no two values share an entry, a place in
/// the reply or a name; all places exist; both ends of each range survive their encodings.
class FieldCheck : public EachField<FieldCheck> {
 public:
  template <class T>
  constexpr void visit(const Words& name, const T&, const Field& field, FieldSize size) {
    take_name(name);
    if (field.has_entry()) check_entry(field, size);
    if (field.has_reply()) check_reply(field, size);
    holds_ = holds_ && field.range.lowest <= field.range.highest;
  }
  constexpr bool holds() const { return holds_; }

 private:
  static constexpr std::size_t kMostFields = 512;
  /// A page's reply has to fit into the reply buffer.
  static constexpr int kReplySize = 500;

  constexpr void take_name(const Words& name) {
    std::uint64_t hash = 14695981039346656037U;  // FNV-1a, 64 bits
    const auto add = [&hash](std::uint64_t byte) { hash = (hash ^ byte) * 1099511628211U; };
    for (const char* word : name.words) {
      for (; *word != '\0'; ++word) add(static_cast<unsigned char>(*word));
      add('.');
    }
    add(static_cast<std::uint64_t>(name.number) + 1);
    add(static_cast<std::uint64_t>(name.index) + 1);
    for (std::size_t i = 0; i < count_; ++i) holds_ = holds_ && names_[i] != hash;
    if (count_ < kMostFields)
      names_[count_++] = hash;
    else
      holds_ = false;
  }
  constexpr void take_entry(int entry) {
    const bool free =
        entry >= 0 && entry < static_cast<int>(UserDataImage::kSize) && !std::exchange(entries_[entry], true);
    holds_ = holds_ && free;
  }
  constexpr void check_entry(const Field& field, FieldSize size) {
    take_entry(field.entry);
    if (size == FieldSize::word) take_entry(field.entry + 1);
    if (field.also_entry != Field::kNowhere) take_entry(field.also_entry);
    check_range(field.range, field.in_entry(), size);
  }
  constexpr void take_reply(int position, std::uint8_t bits) {
    const bool exists = position >= 0 && position + 2 <= kReplySize;
    holds_ = holds_ && exists && (reply_[exists ? position : 0] & bits) == 0;
    if (exists) reply_[position] |= bits;
  }
  constexpr void check_reply(const Field& field, FieldSize size) {
    take_reply(field.reply, static_cast<std::uint8_t>(size == FieldSize::bit ? 1 << field.reply_bit : 0xFF));
    if (size == FieldSize::word)
      take_reply(field.reply_low == Field::kNowhere ? field.reply + 2 : field.reply_low, 0xFF);
    check_range(field.range, field.in_reply(), size);
  }
  constexpr void check_range(const Range& range, const Encoding& as, FieldSize size) {
    const int mask = size == FieldSize::word ? 0xFFFF : size == FieldSize::byte ? 0xFF : 1;
    for (const int end : {range.lowest, range.highest})
      holds_ = holds_ && as.decode(as.encode(end) & mask) == end;
  }

  bool holds_ = true;
  std::array<bool, UserDataImage::kSize> entries_{};
  std::array<std::uint8_t, kReplySize> reply_{};
  std::array<std::uint64_t, kMostFields> names_{};
  std::size_t count_ = 0;
};

/// For a static_assert beside the layout.
template <class Page>
constexpr bool fields_hold() {
  const typename Page::Values values{};
  FieldCheck check;
  Page::fields(values, check);
  return check.holds();
}

/// The page's fields in their order; made once.
template <class Page>
const std::vector<FieldInfo>& field_list() {
  static const std::vector<FieldInfo> kFields = [] {
    const typename Page::Values values{};
    FieldList list;
    Page::fields(values, list);
    return list.fields;
  }();
  return kFields;
}

/// What the page keeps goes into the image.
template <class Page>
void store_fields(const typename Page::Values& values, UserDataImage& image) {
  FieldStore store(image);
  Page::fields(values, store);
}

template <class Page>
void load_fields(typename Page::Values& values, const UserDataImage& image) {
  FieldLoad load(image);
  Page::fields(values, load);
}

/// `current` with what the reply tells; nothing when it ends too early.
template <class Page>
std::optional<typename Page::Values> decode_fields(std::string_view reply, typename Page::Values current) {
  FieldDecode decode(reply);
  Page::fields(current, decode);
  if (decode.short_of()) return std::nullopt;
  return current;
}

}  // namespace qv5123
