#pragma once

#include <QCheckBox>
#include <QDialog>

#include <vector>

#include "tuning/matrix.h"

namespace qv5123 {

/// Asks to which other video modes and light sources a matrix is to go. Destroys itself when it is closed.
class MatrixCopyDialog : public QDialog {
  Q_OBJECT

 public:
  /// `from` cannot be chosen.
  MatrixCopyDialog(const MatrixPlace& from, QWidget* parent);

 signals:
  void chosen(const std::vector<MatrixPlace>& places);

 private:
  struct Choice {
    MatrixPlace place;
    QCheckBox* box;
  };
  std::vector<MatrixPlace> places() const;

  std::vector<Choice> choices_;
};

}  // namespace qv5123
