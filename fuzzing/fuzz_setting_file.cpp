// The setting file and everything else that is decimal numbers.
#include <algorithm>
#include <array>

#include "console/decimal_numbers.h"
#include "console/setting_file.h"
#include "fuzz_input.h"
#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix.h"
#include "tuning/page_model.h"

using namespace qv5123;

namespace {

template <class Page>
void through_page(UserDataImage image) {
  typename Page::Values values;
  load_page<Page>(values, image);
  store_page<Page>(values, image);
  load_page<Page>(values, image);
}

void through_every_page(const UserDataImage& image) {
  through_page<FrontPage>(image);
  through_page<GammaPage>(image);
  through_page<LensPage>(image);
  through_page<AwbPage>(image);
  through_page<MatrixPage>(image);
  through_page<DynamicPage>(image);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto numbers = read_decimal_bytes(fuzz::text_of({data, size}), UserDataImage::kSize);
  fuzz::require(numbers.size() == UserDataImage::kSize, "there are always 1024 entries");
  std::array<std::uint8_t, UserDataImage::kSize> bytes{};
  std::copy(numbers.begin(), numbers.end(), bytes.begin());
  UserDataImage image;
  image.assign(bytes);
  image.mark_loaded();
  fuzz::require(read_decimal_bytes(setting_text(image), UserDataImage::kSize) == numbers,
                "what is written is read again");
  through_every_page(image);
  return 0;
}
