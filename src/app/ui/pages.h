#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "console/page_host.h"
#include "registers/register_desk.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

enum class PageId {
  registers,
  isp_tune,
  gamma,
  lsc,
  awb_tune,
  linear_matrix,
  dynamic_control,
  font_editor,
  make_flash,
  compare
};

struct PageEntry {
  PageId id;
  const char* menu_text;
  const char* status_text;
  const char* name;            ///< what files and accessibility tools call the page
  std::string_view desk = {};  ///< a tuning page's name in files and on the command line
};

/// So many pages have an item in the menu bar; the others are chosen from its menu "Tools".
inline constexpr std::size_t kBarPages = 9;

/// The menu bar's items in its order, then the other pages, with what each says when it is chosen.
inline constexpr std::array<PageEntry, 10> kPageEntries = {{
    {PageId::registers, "&Registers", "ISP register read/write and dump", "registers"},
    {PageId::isp_tune, "&ISPTune", "ISP tune and debug tool", "isp-tune", "front"},
    {PageId::gamma, "&Gamma", "Gamma parameter tool", "gamma", "gamma"},
    {PageId::lsc, "&LSC", "Lens Shading auto Calibration. ", "lsc", "lsc"},
    {PageId::awb_tune, "&AWBTune", "AWB static parameters for white color detection ", "awb-tune", "awb"},
    {PageId::linear_matrix, "&LinearMatrix",
     "Linear Matrix capture and calcuation. Please make sure white balance works good before start capture.",
     "linear-matrix", "matrix"},
    {PageId::dynamic_control, "&DynamicControl", "Dynamic parameters for AE/AWB work", "dynamic-control",
     "dynamic"},
    {PageId::font_editor, "FontEditor", "Edit Font Library", "font-editor"},
    {PageId::make_flash, "&MakeFlash", "Make EEPROM flash binary", "make-flash"},
    {PageId::compare, "C&ompare", "Every value in page, chip and file", "compare"},
}};

/// The page of a tuning desk, by the name that files and the command line call it. Any other name is a
/// std::logic_error.
constexpr PageId tuning_page_id(std::string_view desk) {
  for (const PageEntry& page : kPageEntries)
    if (!desk.empty() && page.desk == desk) return page.id;
  throw std::logic_error("no tuning page of that name");
}

/// A page as the main form takes it over: the widget to show and its side that the main form talks to, which
/// is usually the same object.
struct CreatedPage {
  std::unique_ptr<QWidget> widget;
  Page* page = nullptr;
  TuningDesk* desk = nullptr;         ///< of a tuning page; null for others
  RegisterDesk* registers = nullptr;  ///< of the Registers page; null for others
};

using PageFactory = std::function<CreatedPage(PageHost&)>;

/// How each page is made on its first use. An item without a factory is there and greyed for good.
using PageFactories = std::map<PageId, PageFactory>;

/// The factory of a page class that takes the main form.
template <class Dialog>
PageFactory page_factory() {
  return [](PageHost& host) {
    auto dialog = std::make_unique<Dialog>(host);
    CreatedPage created{nullptr, dialog.get()};
    if constexpr (requires { dialog->tuning_desk(); }) created.desk = &dialog->tuning_desk();
    if constexpr (requires { dialog->register_desk(); }) created.registers = &dialog->register_desk();
    created.widget = std::move(dialog);
    return created;
  };
}

}  // namespace qv5123
