#include "app/ui/process.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

// It is found by name in what the toolkit has loaded: were it not there any more, only the start would be
// slower.
TEST(FontSearch, BeginsWhereTheToolkitBringsItAlong) {
  EXPECT_TRUE(begin_font_search().joinable());
}

}  // namespace
}  // namespace qv5123
