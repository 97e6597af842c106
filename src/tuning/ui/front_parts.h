#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include "tuning/raw_access.h"

/// What the groups of the ISP tune page are put together from.
namespace qv5123 {

QGridLayout* tight_grid(QWidget* parent);
QLabel* label_for(QWidget* buddy, const QString& text);
/// Label and field as the first two cells of a row.
void add_field(QGridLayout* grid, int row, const QString& caption, QWidget* field);

/// An edit for hex digits. It takes any text, and is marked while it holds one that would be misread; the
/// tooltip tells the form.
QLineEdit* make_hex_edit(HexForm form, const QString& name, const QString& text, const QString& tooltip);

}  // namespace qv5123
