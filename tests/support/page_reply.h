#pragma once

#include <string>

#include "base/hex.h"
#include "tuning/page_model.h"

namespace qv5123::test {

/// Encodes values as the chip does, lowercase hex; places not named stay "0".
class ReplyWriter : public EachField<ReplyWriter> {
 public:
  template <class T>
  void visit(const Words&, const T& value, const Field& field, FieldSize size) {
    if (!field.has_reply()) return;
    const int number = field.in_reply().encode(static_cast<int>(value));
    if (size == FieldSize::bit) return put_bit(field, number);
    if (size == FieldSize::byte) return put(field.reply, number);
    put(field.reply, number >> 8);
    put(field.reply_low == Field::kNowhere ? field.reply + 2 : field.reply_low, number);
  }
  std::string text;

 private:
  void put(int position, int value) {
    const auto at = static_cast<std::size_t>(position);
    if (text.size() < at + 2) text.resize(at + 2, '0');
    text.replace(at, 2, lower_hex(static_cast<unsigned>(value & 0xFF)));
  }
  void put_bit(const Field& field, int bit) {
    const int others = reply_byte_at(text, static_cast<std::size_t>(field.reply)) & ~(1 << field.reply_bit);
    put(field.reply, others | bit << field.reply_bit);
  }
};

template <class Page>
std::string encode_page(const typename Page::Values& values) {
  ReplyWriter writer;
  Page::fields(values, writer);
  return writer.text;
}

}  // namespace qv5123::test
