#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <vector>

#include "link/link_report.h"

class QFormLayout;
class QLabel;

namespace qv5123 {

/// How the line does, in figures that are brought up to date each second. Stays open beside the main window.
class LinkHealthDialog final : public QDialog {
  Q_OBJECT

 public:
  LinkHealthDialog(std::function<LinkReport()> report, QWidget* parent = nullptr);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void show_report();
  void copy_report() const;

  const std::function<LinkReport()> report_;
  QFormLayout* form_ = nullptr;
  std::vector<QLabel*> figures_;
  QLabel* hint_ = nullptr;
  QTimer timer_;
};

}  // namespace qv5123
