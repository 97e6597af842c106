#include "tuning/ui/patch_grid.h"

#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace qv5123 {
namespace {

constexpr int kRows = 12;
/// Of one patch in the layout: its button, three edits, and the gap to the other half.
constexpr int kColumns = 5;
constexpr std::uint32_t kHighest = std::numeric_limits<int>::max();

int row_of(std::size_t patch) {
  return static_cast<int>(patch) % kRows + 1;
}
int column_of(std::size_t patch) {
  return static_cast<int>(patch) / kRows * kColumns;
}

}  // namespace

PatchGrid::PatchGrid(MatrixDesk& desk) : desk_(desk), choice_(new QButtonGroup(this)) {
  auto* group = new QGroupBox("Color Patch");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(6, 2, 6, 4);
  grid->setHorizontalSpacing(3);
  grid->setVerticalSpacing(0);
  grid->setColumnMinimumWidth(kColumns - 1, 6);
  add_header(grid, 0);
  add_header(grid, kColumns);
  for (std::size_t patch = 0; patch < kPatches; ++patch) add_patch(grid, patch);
  on_choice(choice_, [this](int patch) { desk_.choose_patch(static_cast<std::size_t>(patch)); });
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(group);
  show_values();
}

void PatchGrid::add_header(QGridLayout* grid, int column) {
  for (int c = 0; c < 3; ++c) {
    grid->addWidget(new QLabel(kColourNames[c]), 0, column + c + 1, Qt::AlignCenter);
    grid->setColumnStretch(column + c + 1, 1);
  }
}

void PatchGrid::add_patch(QGridLayout* grid, std::size_t patch) {
  const QString caption = kPatchCaptions[patch];
  auto* radio = named(new QRadioButton(caption), caption, "GET COLOR fills this patch");
  choice_->addButton(radio, static_cast<int>(patch));
  grid->addWidget(radio, row_of(patch), column_of(patch));
  for (std::size_t colour = 0; colour < 3; ++colour) add_edit(grid, patch, colour);
}

void PatchGrid::add_edit(QGridLayout* grid, std::size_t patch, std::size_t colour) {
  auto* edit = make_number(0, kHighest, QString("%1 %2").arg(kPatchCaptions[patch], kColourNames[colour]),
                           "0..2147483647 counts, 0 when not measured; the picker gives 0..255");
  edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
  edit->setAlignment(Qt::AlignRight);
  // Room for what the picker gives; the largest number that fits would make the page too wide.
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance("0000") + 10);
  edit->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  connect(edit, &QSpinBox::valueChanged, this, [this, patch, colour](int value) {
    desk_.type_patch(patch, colour, static_cast<std::uint32_t>(value));
  });
  edits_[patch][colour] = edit;
  grid->addWidget(edit, row_of(patch), column_of(patch) + static_cast<int>(colour) + 1);
}

void PatchGrid::show_values() {
  show_choice(choice_, static_cast<int>(desk_.values().patch));
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    for (std::size_t c = 0; c < 3; ++c) {
      show_value(edits_[patch][c], static_cast<int>(std::min(desk_.values().measured[patch][c], kHighest)));
    }
  }
}

void PatchGrid::show_typing() {
  using Typing = MatrixDesk::Typing;
  const Typing typing = desk_.typing();
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    const bool on = typing == Typing::all || (typing == Typing::chosen && patch == desk_.values().patch);
    for (QSpinBox* edit : edits_[patch]) edit->setEnabled(on);
  }
}

}  // namespace qv5123
