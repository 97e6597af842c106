#include "app/font_search.h"

namespace qv5123 {

std::jthread begin_font_search() {
  return {};
}

}  // namespace qv5123
