#pragma once

#include <QWidget>

#include "console/page_host.h"
#include "content/flash_image.h"

class QGridLayout;
class QLineEdit;

namespace qv5123 {

class FlashMapView;

/// The flash image maker page: three files in, one image out, and a map of what they will fill.
class CDlgMakeEeprom : public QWidget, public Page {
  Q_OBJECT

 public:
  explicit CDlgMakeEeprom(PageHost& host, QWidget* parent = nullptr);

 protected:
  /// Files that are dropped go where they were dropped, or where their kind belongs.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  /// They may have changed meanwhile.
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* add_path_row(QGridLayout* layout, const QString& caption, const FileChoice& choice);
  Task<> choose_path(QLineEdit* edit, FileChoice choice);
  Task<> make_image();
  Task<> save_image(FlashBuild build);
  QLineEdit* edit_for(const std::filesystem::path& dropped) const;
  FlashFiles files() const;
  void look_again();
  Task<> look();

  PageHost& host_;
  QLineEdit* firmware_;
  QLineEdit* font_;
  QLineEdit* user_;
  FlashMapView* map_;
  /// What the user started and has not answered to its end; last, so that it ends before what it uses.
  FlowSet flows_;
  Flow looking_;
};

}  // namespace qv5123
