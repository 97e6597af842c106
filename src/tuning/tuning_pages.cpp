#include "tuning/tuning_pages.h"

#include <algorithm>
#include <iterator>

#include "tuning/awb_desk.h"
#include "tuning/dynamic_desk.h"
#include "tuning/front_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {

std::string page_names() {
  std::string text;
  for (const char* name : kTuningPages) text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

bool is_page(std::string_view name) {
  return std::ranges::find(kTuningPages, name) != std::end(kTuningPages);
}

std::unique_ptr<TuningModel> make_model(std::string_view name) {
  if (name == FrontPage::kTexts.name) return std::make_unique<PageModel<FrontPage>>();
  if (name == AwbPage::kTexts.name) return std::make_unique<PageModel<AwbPage>>();
  if (name == DynamicPage::kTexts.name) return std::make_unique<PageModel<DynamicPage>>();
  if (name == GammaPage::kTexts.name) return std::make_unique<PageModel<GammaPage>>();
  if (name == MatrixPage::kTexts.name) return std::make_unique<PageModel<MatrixPage>>();
  return std::make_unique<PageModel<LensPage>>();
}

std::unique_ptr<TuningDesk> make_desk(std::string_view name, DeskHost& host, CQV5123Doc& document) {
  UserDataImage& image = document.user_data;
  if (name == FrontPage::kTexts.name) return std::make_unique<FrontDesk>(host, image);
  if (name == AwbPage::kTexts.name) return std::make_unique<AwbDesk>(host, image);
  if (name == DynamicPage::kTexts.name) return std::make_unique<DynamicDesk>(host, image);
  if (name == GammaPage::kTexts.name)
    return std::make_unique<GammaDesk>(host, image, document.front_gamma_level);
  if (name == MatrixPage::kTexts.name) return std::make_unique<MatrixDesk>(host, image);
  return std::make_unique<LensDesk>(host, image);
}

}  // namespace qv5123
