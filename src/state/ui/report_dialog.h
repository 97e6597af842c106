#pragma once

#include <QDialog>
#include <QString>

class QFormLayout;
class QLineEdit;
class QPlainTextEdit;

namespace qv5123 {

/// What a sign-off report needs that the program does not know by itself.
struct ReportAnswers {
  QString serial_number;
  QString notes;
  QString limits;  ///< a file; may be empty, as the others
  QString firmware;
  QString font;
};

class ReportDialog final : public QDialog {
  Q_OBJECT

 public:
  ReportDialog(const ReportAnswers& before, QWidget* parent);
  ReportAnswers answers() const;

 signals:
  /// The file that this edit names is to be chosen.
  void file_wanted(QLineEdit* edit);

 private:
  QLineEdit* add_file(QFormLayout* form, const QString& caption, const QString& tooltip, const QString& file);

  QLineEdit* serial_number_;
  QPlainTextEdit* notes_;
  QLineEdit* limits_;
  QLineEdit* firmware_;
  QLineEdit* font_;
};

}  // namespace qv5123
