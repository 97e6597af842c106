#pragma once

#include <QWidget>

#include "console/page_host.h"
#include "content/flash_image.h"

class QGridLayout;
class QLineEdit;

namespace qv5123 {

/// The flash image maker page: three files in, one image out.
class CDlgMakeEeprom : public QWidget, public Page {
  Q_OBJECT

 public:
  explicit CDlgMakeEeprom(PageHost& host, QWidget* parent = nullptr);

 private:
  QLineEdit* add_path_row(QGridLayout* layout, const QString& label, const FileChoice& choice);
  Task<> choose_path(QLineEdit* edit, FileChoice choice);
  Task<> make_image();
  Task<> save_image(FlashBuild build);

  PageHost& host_;
  QLineEdit* firmware_;
  QLineEdit* font_;
  QLineEdit* user_;
  /// What the user started and has not answered to its end; last, so that it ends before what it uses.
  FlowSet flows_;
};

}  // namespace qv5123
