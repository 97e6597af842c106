#pragma once

#include <QPushButton>
#include <QString>

#include <functional>
#include <vector>

class QComboBox;

/// What the controls of all rooms have in common.
namespace qv5123 {

/// A button that assistive tools call by its caption.
QPushButton* push_button(const QString& caption, const QString& tool_tip, QWidget* parent = nullptr);

/// Calls `take` for what the user chooses in `list`, by whatever means: what assistive tools choose is a
/// change alone, and the entry that was chosen before is none. What the program itself sets must be set with
/// the list's signals blocked.
void on_choice(QComboBox* list, std::function<void(int index)> take);

/// "register 0x3A", as tooltips call it; "0xF922" has as many digits as it needs.
QString register_text(int address);
/// "registers 0xCB, 0xCC".
QString registers_text(const std::vector<int>& addresses);

}  // namespace qv5123
