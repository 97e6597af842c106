#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "console/user_data_image.h"
#include "link/reply_text.h"
#include "tuning/field.h"

/// A page says once where each of its values lives, as a layout: a function template that names every value
/// with its place to a visitor.
///
///     template <class Values, class Visitor>
///     void lens_image_layout(Values& values, Visitor& visit) {
///       for (std::size_t c = 0; c < 3; ++c) visit.word(440 + 2 * c, values.parameter1[c]);
///     }
///
/// The visitors below turn the one layout into storing, loading, decoding and encoding, so that the two
/// directions cannot drift apart.
namespace qv5123 {

/// Stores values into the user data image. Places are entry indexes.
class ImageWriter {
 public:
  explicit ImageWriter(UserDataImage& image) : image_(image) {}
  void byte(std::size_t index, int value, const Encoding& as = kPlain) {
    image_.set_entry(index, as.encode(value));
  }
  void word(std::size_t index, int value, const Encoding& as = kPlain) {
    image_.set_word(index, as.encode(value));
  }

 private:
  UserDataImage& image_;
};

/// Loads values from the user data image.
class ImageReader {
 public:
  explicit ImageReader(const UserDataImage& image) : image_(image) {}
  template <class T>
  void byte(std::size_t index, T& value, const Encoding& as = kPlain) const {
    value = static_cast<T>(as.decode(image_.entry(index)));
  }
  template <class T>
  void word(std::size_t index, T& value, const Encoding& as = kPlain) const {
    value = static_cast<T>(as.decode(image_.word(index)));
  }

 private:
  const UserDataImage& image_;
};

/// Decodes values from a reply. Places are character positions. Further characters behind the last of them
/// are left alone, for a chip may report more than a page knows. short_of() tells whether the reply ended
/// before the last of them, in which case what was read must not be shown.
class ReplyReader {
 public:
  explicit ReplyReader(std::string_view reply) : reply_(reply) {}
  template <class T>
  void byte(std::size_t position, T& value, const Encoding& as = kPlain) {
    value = static_cast<T>(as.decode(reply_byte_at(reply_, position)));
    reach(position + 2);
  }
  template <class T>
  void word(std::size_t position, T& value, const Encoding& as = kPlain) {
    value = static_cast<T>(as.decode(reply_word_at(reply_, position)));
    reach(position + 4);
  }
  /// One bit, 0..7, of the byte at `position`.
  void bit(std::size_t position, int number, bool& value) {
    value = (reply_byte_at(reply_, position) >> number & 1) != 0;
    reach(position + 2);
  }
  bool short_of() const { return needed_ > reply_.size(); }

 private:
  void reach(std::size_t end) { needed_ = end > needed_ ? end : needed_; }
  std::string_view reply_;
  std::size_t needed_ = 0;
};

/// Encodes values as the chip does, lowercase hex; places not named stay "0".
class ReplyWriter {
 public:
  void byte(std::size_t position, int value, const Encoding& as = kPlain) {
    put(position, as.encode(value), 2);
  }
  void word(std::size_t position, int value, const Encoding& as = kPlain) {
    put(position, as.encode(value), 4);
  }
  /// Leaves the other bits of the byte as they are.
  void bit(std::size_t position, int number, bool value) {
    const int others = reply_byte_at(text_, position) & ~(1 << number);
    put(position, others | (value ? 1 << number : 0), 2);
  }
  const std::string& text() const { return text_; }

 private:
  void put(std::size_t position, int value, std::size_t digits) {
    if (text_.size() < position + digits) text_.resize(position + digits, '0');
    for (std::size_t i = digits; i-- > 0; value >>= 4) text_[position + i] = "0123456789abcdef"[value & 0xF];
  }
  std::string text_;
};

}  // namespace qv5123
