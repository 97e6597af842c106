#include "tuning/tuning_pages.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <type_traits>

#include "base/text.h"
#include "tuning/awb_desk.h"
#include "tuning/dynamic_desk.h"
#include "tuning/front_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {
namespace {

/// How a page and its work are made.
struct PageMaker {
  const char* name;
  std::unique_ptr<TuningModel> (*model)();
  std::unique_ptr<TuningDesk> (*desk)(DeskHost& host, CQV5123Doc& document);
};

template <class PageOf, class Desk>
constexpr PageMaker maker() {
  return {PageOf::kTexts.name,
          []() -> std::unique_ptr<TuningModel> { return std::make_unique<PageModel<PageOf>>(); },
          [](DeskHost& host, CQV5123Doc& document) -> std::unique_ptr<TuningDesk> {
            if constexpr (std::is_same_v<Desk, GammaDesk>)
              return std::make_unique<Desk>(host, document.user_data, document.front_gamma_level);
            else
              return std::make_unique<Desk>(host, document.user_data);
          }};
}

constexpr std::array kMakers{maker<FrontPage, FrontDesk>(),     maker<AwbPage, AwbDesk>(),
                             maker<DynamicPage, DynamicDesk>(), maker<GammaPage, GammaDesk>(),
                             maker<MatrixPage, MatrixDesk>(),   maker<LensPage, LensDesk>()};

static_assert(std::ranges::equal(kMakers, kTuningPages, std::equal_to<std::string_view>(), &PageMaker::name),
              "the names in their order");

const PageMaker& maker_of(std::string_view name) {
  const auto found = std::ranges::find(kMakers, name, &PageMaker::name);
  if (found == kMakers.end()) throw std::logic_error("no tuning page of that name");
  return *found;
}

}  // namespace

std::string page_names() {
  return joined({std::begin(kTuningPages), std::end(kTuningPages)}, ", ");
}

bool is_page(std::string_view name) {
  return std::ranges::find(kTuningPages, name) != std::end(kTuningPages);
}

std::unique_ptr<TuningModel> make_model(std::string_view name) {
  return maker_of(name).model();
}

std::unique_ptr<TuningDesk> make_desk(std::string_view name, DeskHost& host, CQV5123Doc& document) {
  return maker_of(name).desk(host, document);
}

}  // namespace qv5123
