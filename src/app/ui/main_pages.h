#pragma once

#include <memory>
#include <utility>

#include "app/ui/page_area.h"
#include "content/ui/dlg_font_maker.h"
#include "content/ui/dlg_make_eeprom.h"
#include "registers/ui/dlg_isp_register.h"
#include "tuning/ui/dlg_ae_tune.h"
#include "tuning/ui/dlg_isp_awb.h"
#include "tuning/ui/dlg_isp_front.h"
#include "tuning/ui/dlg_isp_gamma_rgb.h"
#include "tuning/ui/dlg_isp_lsc.h"
#include "tuning/ui/dlg_isp_matrix.h"

namespace qv5123 {

/// The factory of a page that measures, and shares with the others what `board` keeps.
template <class Dialog>
PageFactory measuring_page(std::shared_ptr<MeasuringBoard> board) {
  return [board = std::move(board)](PageHost& host) {
    auto dialog = std::make_unique<Dialog>(host, board);
    CreatedPage created{nullptr, dialog.get(), &dialog->tuning_desk()};
    created.widget = std::move(dialog);
    return created;
  };
}

/// The program's nine pages. Only what puts a whole program together includes this: it knows every room.
inline PageFactories all_pages(
    const std::shared_ptr<MeasuringBoard>& board = std::make_shared<MeasuringBoard>()) {
  PageFactories pages;
  pages[PageId::registers] = page_factory<CDlgIspRegister>();
  pages[PageId::isp_tune] = page_factory<CDlgIspFront>();
  pages[PageId::gamma] = page_factory<CDlgIspGammaRgb>();
  pages[PageId::lsc] = measuring_page<CDlgIspLSC>(board);
  pages[PageId::awb_tune] = measuring_page<CDlgIspAwb>(board);
  pages[PageId::linear_matrix] = measuring_page<CDlgIspMatrix>(board);
  pages[PageId::dynamic_control] = page_factory<CDlgAeTune>();
  pages[PageId::font_editor] = page_factory<CDlgFontMaker>();
  pages[PageId::make_flash] = page_factory<CDlgMakeEeprom>();
  return pages;
}

}  // namespace qv5123
