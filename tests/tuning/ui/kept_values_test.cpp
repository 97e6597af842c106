#include <random>

#include "support/page_bench.h"
#include "support/page_reply.h"
#include "tuning/ui/dlg_ae_tune.h"
#include "tuning/ui/dlg_isp_awb.h"
#include "tuning/ui/dlg_isp_gamma_rgb.h"
#include "tuning/ui/dlg_isp_lsc.h"
#include "tuning/ui/dlg_isp_matrix.h"

namespace qv5123 {
namespace {

/// A page and what it edits.
template <class Window, class Layout>
struct KeptPage {
  using Dialog = Window;
  using Edited = Layout;
};

template <class Case>
class KeptValues : public test::PageBench<typename Case::Dialog> {};

using Cases = testing::Types<KeptPage<CDlgAeTune, DynamicPage>, KeptPage<CDlgIspAwb, AwbPage>,
                             KeptPage<CDlgIspGammaRgb, GammaPage>, KeptPage<CDlgIspLSC, LensPage>,
                             KeptPage<CDlgIspMatrix, MatrixPage>>;
TYPED_TEST_SUITE(KeptValues, Cases);

TYPED_TEST(KeptValues, OfFileAndChipAreStoredAsTheyCame) {
  std::mt19937 random(1);
  UserDataImage& data = this->host_.doc.user_data;
  for (int round = 0; round < 10; ++round) {
    for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
      data.set_entry(i, static_cast<int>(random() & 0xFF));
    data.mark_loaded();
    using Edited = typename TypeParam::Edited;
    typename Edited::Values values;
    load_page<Edited>(values, data);
    UserDataImage expected;
    store_page<Edited>(values, expected);
    const auto expect_kept = [&] {
      data = {};
      this->page_.save_to_user_data();
      EXPECT_EQ(data, expected) << round;
    };
    this->user_.click("Load <- File");
    if constexpr (std::is_same_v<decltype(values), MatrixValues>) {
      for (int mode = 0; mode < 4; ++mode) {
        this->user_.choose("Video Mode", mode);
        for (const char* light : {"Outdoor", "Light-1", "Light-2"}) this->user_.click(light);
      }
    }
    expect_kept();
    this->user_.click("Load <- ISP");
    this->answer_load(test::encode_page<Edited>(values));
    expect_kept();
  }
}

}  // namespace
}  // namespace qv5123
