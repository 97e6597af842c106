#pragma once

#include <algorithm>
#include <any>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "console/user_data_image.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"

/// A tuning page's values between edits, file and chip.
///
/// A page is a type with `Values`, `kTexts` and `fields(values, visitor)`. Where its layout alone does not
/// say what becomes of the values it also has
/// - `store(values, image)` in place of storing by the layout,
/// - `load(values, image)` in place of loading by it,
/// - `loaded(values)` for what follows from values that came from elsewhere,
/// - `keep_place(values, now)` for what only says where the page stands, such as a cursor, and is as `now`
/// when
///   former values come back.
namespace qv5123 {

/// Copies what the page keeps into the image.
template <class Page>
void store_page(const typename Page::Values& values, UserDataImage& image) {
  if constexpr (requires { Page::store(values, image); })
    Page::store(values, image);
  else
    store_fields<Page>(values, image);
}

/// The reverse, as "Load <- File" does it.
template <class Page>
void load_page(typename Page::Values& values, const UserDataImage& image) {
  if constexpr (requires { Page::load(values, image); })
    Page::load(values, image);
  else
    load_fields<Page>(values, image);
  if constexpr (requires { Page::loaded(values); }) Page::loaded(values);
}

/// `current` with what the reply tells; nothing when it ends too early.
template <class Page>
std::optional<typename Page::Values> decode_page(std::string_view reply, typename Page::Values current = {}) {
  auto values = decode_fields<Page>(reply, std::move(current));
  if constexpr (requires { Page::loaded(*values); }) {
    if (values) Page::loaded(*values);
  }
  return values;
}

/// A page's values for who does not know which page it is. Fields and numbers stand in the layout's order.
class TuningModel {
 public:
  explicit TuningModel(const DeskTexts& texts) : texts_(texts) {}
  virtual ~TuningModel() = default;

  const DeskTexts& texts() const { return texts_; }
  virtual const std::vector<FieldInfo>& fields() const = 0;
  virtual std::vector<int> numbers() const = 0;
  /// As if it had been typed: limited to what the field takes.
  virtual void set_number(std::size_t field, int number) = 0;

  /// Copies what the page keeps into `image`.
  virtual void store(UserDataImage& image) const = 0;
  /// Copies one value, whoever keeps it.
  virtual void store_field(std::size_t field, UserDataImage& image) const = 0;
  /// Takes the values from `image`, as "Load <- File" does.
  virtual void load(const UserDataImage& image) = 0;
  /// Takes all that has entries, whoever keeps it, as if a file had been loaded.
  virtual void load_all(const UserDataImage& image) = 0;
  /// Takes the values from the chip's reply. False, and nothing has changed, when it ends too early.
  virtual bool take_reply(std::string_view reply) = 0;

  /// All that the page holds, for restore() of the same page.
  virtual std::any keep() const = 0;
  /// Brings it back, but for where the page stands.
  virtual void restore(const std::any& kept) = 0;
  /// Whether restoring would change nothing.
  virtual bool holds(const std::any& kept) const = 0;

 private:
  const DeskTexts& texts_;
};

template <class Page>
class PageModel final : public TuningModel {
 public:
  using Values = typename Page::Values;

  PageModel() : TuningModel(Page::kTexts) {}

  /// The place in fields() of a member of `values`.
  template <class T>
  std::size_t field(const T& value) const {
    FieldFind find(&value);
    Page::fields(values, find);
    if (find.found == FieldFind::kNowhere) throw std::logic_error("no value of the page");
    return find.found;
  }

  const std::vector<FieldInfo>& fields() const override { return field_list<Page>(); }
  std::vector<int> numbers() const override {
    FieldNumbers numbers;
    Page::fields(values, numbers);
    return std::move(numbers.numbers);
  }
  void set_number(std::size_t field, int number) override {
    const Range& taken = fields()[field].takes();
    FieldSet set(field, std::clamp(number, taken.lowest, taken.highest));
    Page::fields(values, set);
    if constexpr (requires { Page::loaded(values); }) Page::loaded(values);
  }
  void store(UserDataImage& image) const override { store_page<Page>(values, image); }
  void store_field(std::size_t field, UserDataImage& image) const override {
    FieldStore store(image, field);
    Page::fields(values, store);
  }
  void load(const UserDataImage& image) override { load_page<Page>(values, image); }
  void load_all(const UserDataImage& image) override {
    UserDataImage file = image;
    file.mark_loaded();
    load(file);
    FieldLoad load(file, true);
    Page::fields(values, load);
  }
  bool take_reply(std::string_view reply) override {
    auto taken = decode_page<Page>(reply, values);
    if (taken) values = std::move(*taken);
    return taken.has_value();
  }
  std::any keep() const override { return values; }
  void restore(const std::any& kept) override { values = placed(kept); }
  bool holds(const std::any& kept) const override { return values == placed(kept); }

  Values values;

 private:
  Values placed(const std::any& kept) const {
    Values restored = std::any_cast<const Values&>(kept);
    if constexpr (requires { Page::keep_place(restored, values); }) Page::keep_place(restored, values);
    return restored;
  }
};

}  // namespace qv5123
