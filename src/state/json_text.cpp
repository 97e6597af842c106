#include "state/json_text.h"

#include "base/hex.h"
#include "base/utf8.h"

namespace qv5123 {

std::string json_text(std::string_view text) {
  std::string json = "\"";
  for (const char c : whole_utf8(text)) {
    if (c == '"' || c == '\\') json += '\\';
    if (static_cast<unsigned char>(c) < 0x20) {
      json += "\\u" + lower_hex(static_cast<unsigned char>(c), 4);
    } else {
      json += c;
    }
  }
  return json + "\"";
}

}  // namespace qv5123
