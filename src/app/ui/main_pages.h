#pragma once

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

/// The program's nine pages. Only what puts a whole program together includes this: it knows every room.
inline PageFactories all_pages() {
  PageFactories pages;
  pages[PageId::registers] = page_factory<CDlgIspRegister>();
  pages[PageId::isp_tune] = page_factory<CDlgIspFront>();
  pages[PageId::gamma] = page_factory<CDlgIspGammaRgb>();
  pages[PageId::lsc] = page_factory<CDlgIspLSC>();
  pages[PageId::awb_tune] = page_factory<CDlgIspAwb>();
  pages[PageId::linear_matrix] = page_factory<CDlgIspMatrix>();
  pages[PageId::dynamic_control] = page_factory<CDlgAeTune>();
  pages[PageId::font_editor] = page_factory<CDlgFontMaker>();
  pages[PageId::make_flash] = page_factory<CDlgMakeEeprom>();
  return pages;
}

}  // namespace qv5123
