#pragma once

#include <QString>

class QWidget;

namespace qv5123 {

/// Gives the buttons and check boxes of a page a key of their own, to press with Alt, as far as there are
/// letters: those of the words' beginnings first. None of the `reserved` ones, which are the menu bar's, nor
/// those of the page's labels.
void give_mnemonics(QWidget& page, const QString& reserved);

/// Lets the return key in an edit beside a "S" or "Set" press that button. The edit's tool tip says so.
void let_return_set(QWidget& page);

}  // namespace qv5123
