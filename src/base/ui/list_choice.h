#pragma once

#include <functional>

class QComboBox;

namespace qv5123 {

/// Calls `take` for what the user chooses in `list`, by whatever means: what assistive tools choose is a
/// change alone, and the entry that was chosen before is none. What the program itself sets must be set with
/// the list's signals blocked.
void on_choice(QComboBox* list, std::function<void(int index)> take);

}  // namespace qv5123
