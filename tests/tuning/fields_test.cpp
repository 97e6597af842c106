// All values of the tuning pages, compared as a whole with a list that was written apart from their layouts.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "base/hex.h"
#include "support/source_folder.h"
#include "tuning/page_model.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

/// "lsc.parameter1.r 440,441 0x64 0..4095 Parameter-1 RED": name, entries, register, range and caption.
std::string line_of(const std::string& page, const FieldInfo& field) {
  std::string entries;
  for (const std::size_t entry : field.entries())
    entries += (entries.empty() ? "" : ",") + std::to_string(entry);
  const std::string address =
      field.address == Field::kNowhere ? "-" : "0x" + upper_hex(static_cast<unsigned>(field.address));
  return page + "." + field.name + " " + (entries.empty() ? "-" : entries) + " " + address + " " +
         std::to_string(field.range.lowest) + ".." + std::to_string(field.range.highest) + " " +
         field.caption.caption() + "\n";
}

TEST(Fields, AreNamedStoredAndAddressedAsListed) {
  std::ifstream file(test::source_folder() / "tests/tuning/fields.txt");
  const std::string listed(std::istreambuf_iterator<char>(file), {});
  std::string all;
  for (const char* page : kTuningPages) {
    const std::unique_ptr<TuningModel> model = make_model(page);
    for (const FieldInfo& field : model->fields()) all += line_of(page, field);
  }
  EXPECT_EQ(all, listed);
}

}  // namespace
}  // namespace qv5123
