#pragma once

#include <QSize>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/ui/pages.h"
#include "base/scheduler.h"
#include "base/task.h"

class QDialog;
class QWidget;

namespace qv5123 {

class CQV5123View;

/// Opens every page in turn and takes a picture of the window each time, the last with a few values edited,
/// then one of a dialog. May look whether all of them fit.
class Tour {
 public:
  /// How long a page may take to show the chip's values.
  static constexpr std::chrono::seconds kPatience{60};

  struct Plan {
    std::filesystem::path folder;  ///< for the pictures
    QSize size;                    ///< of the window in them
    bool check_layout = false;
    /// Has something to show on a page before its picture is taken. May be empty.
    std::function<Task<>(PageId)> fill = {};
    /// Looks at what all pages are filled with, before values are edited. May be empty.
    std::function<Task<>()> filled = {};
  };

  Tour(QWidget& window, CQV5123View& view, Plan plan);

  /// Takes the pictures. Returns what went wrong, a line for each, none when nothing did.
  Task<std::vector<std::string>> run(std::function<std::unique_ptr<QDialog>()> port_dialog);

 private:
  Task<bool> settle(std::function<bool()> settled);
  bool quiet() const;
  Task<> take_picture_of_page(PageId id);
  Task<> take_picture_of_marks();
  void edit_values(const char* page);
  void take_picture(QWidget& widget, const char* name);

  QWidget& window_;
  CQV5123View& view_;
  const Plan plan_;
  std::vector<std::string> faults_;
};

}  // namespace qv5123
