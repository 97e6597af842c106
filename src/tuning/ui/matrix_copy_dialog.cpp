#include "tuning/ui/matrix_copy_dialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "tuning/ui/page_parts.h"

namespace qv5123 {

MatrixCopyDialog::MatrixCopyDialog(const MatrixPlace& from, QWidget* parent) : QDialog(parent) {
  setWindowTitle("Copy matrix to");
  setAttribute(Qt::WA_DeleteOnClose);
  auto* grid = new QGridLayout;
  for (int light = 0; light < kLightSources; ++light)
    grid->addWidget(new QLabel(kLightSourceNames[light]), 0, light + 1, Qt::AlignCenter);
  for (int mode = 0; mode < kVideoModes; ++mode) {
    grid->addWidget(new QLabel(kVideoModeNames[mode]), mode + 1, 0);
    for (int light = 0; light < kLightSources; ++light) {
      const QString name = QString("%1 %2").arg(kVideoModeNames[mode], kLightSourceNames[light]);
      auto* box = named(new QCheckBox, name, "Gets the matrix that the page shows");
      const MatrixPlace place{mode, light};
      box->setEnabled(place != from);
      grid->addWidget(box, mode + 1, light + 1, Qt::AlignCenter);
      choices_.push_back({place, box});
    }
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText("Copy");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(this, &QDialog::accepted, this, [this] { emit chosen(places()); });
  auto* column = new QVBoxLayout(this);
  column->addLayout(grid);
  column->addWidget(buttons);
}

std::vector<MatrixPlace> MatrixCopyDialog::places() const {
  std::vector<MatrixPlace> places;
  for (const Choice& choice : choices_)
    if (choice.box->isChecked()) places.push_back(choice.place);
  return places;
}

}  // namespace qv5123
