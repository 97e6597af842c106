#pragma once

#include <vector>

#include "app/ui/find_dialog.h"

namespace qv5123 {

class CMainFrame;
class CQV5123View;

/// Everything in the window that can be gone to: the commands of the menus, the values of all tuning pages
/// and the buttons of all pages, opened or not, the other controls of the pages that are open and of the
/// column, registers and bit fields. Both outlive what is returned.
std::vector<FindItem> places_in(CMainFrame& frame, CQV5123View& view);
/// The registers and bit fields alone. Opens their page where nobody did.
std::vector<FindItem> registers_in(CQV5123View& view);

}  // namespace qv5123
