#pragma once

#include <QLabel>
#include <QRadioButton>
#include <QWidget>

#include "tuning/matrix_desk.h"
#include "tuning/ui/patch_swatch_view.h"

namespace qv5123 {

/// The patches' colours with both fits side by side, the choice between the two, and what is to be known of
/// them.
class MatrixFitBox : public QWidget {
  Q_OBJECT

 public:
  /// The desk must outlive the box.
  explicit MatrixFitBox(MatrixDesk& desk);

  void show_report();
  /// "Codes: R 1317 -267 -26 ...", and what the patches tell of the fit.
  QString text() const { return text_->text(); }

 private:
  QLayout* make_options();
  QLayout* make_choice();
  QRadioButton* make_fit(const QString& caption, const QString& tooltip, MatrixDesk::Fit fit);
  QString codes_text() const;
  QString patches_text() const;

  MatrixDesk& desk_;
  PatchSwatchView* swatches_;
  QRadioButton* calculated_;
  QRadioButton* color_difference_;
  QLabel* text_;
};

}  // namespace qv5123
