#pragma once

#include <QByteArray>
#include <QPointer>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "base/background.h"
#include "base/task.h"
#include "console/prompts.h"
#include "state/sign_off.h"
#include "state/ui/report_dialog.h"
#include "state/write_history.h"

class QLineEdit;

namespace qv5123 {

class CMainFrame;
class CQV5123View;

/// "Report..." of the menu Tools: what is known of the board, as a file to be signed.
class ReportTool {
 public:
  struct Surroundings {
    CMainFrame& frame;
    CQV5123View& view;
    Prompts& prompts;
    Background& files;
    const WriteHistory& history;
    /// What the port is called; empty without one.
    std::function<std::string()> port;
    /// What the chip there has told of itself.
    std::function<std::optional<Greeting>()> greeting;
  };

  /// All of it must outlive the tool, which takes its dialog along.
  explicit ReportTool(Surroundings surroundings);
  ReportTool(const ReportTool&) = delete;
  ReportTool& operator=(const ReportTool&) = delete;
  ~ReportTool();

  /// What the program knows, without files, limits and journal.
  SignOff known() const;
  void open();
  /// Writes the report, as PDF or JSON where the name ends so. What went wrong, in words; empty when nothing
  /// did.
  Task<std::string> write(std::filesystem::path out, ReportAnswers answers);

 private:
  Task<> choose_file(QPointer<QLineEdit> edit);
  Task<> save(ReportAnswers answers);

  const Surroundings surroundings_;
  ReportAnswers answers_;
  QPointer<ReportDialog> dialog_;
  FlowSet flows_;
};

}  // namespace qv5123
