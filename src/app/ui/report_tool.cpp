#include "app/ui/report_tool.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <utility>
#include <vector>

#include "app/ui/frame.h"
#include "app/ui/qv5123_view.h"
#include "base/atomic_file.h"
#include "base/text.h"
#include "base/ui/qt_text.h"
#include "console/slow_write.h"
#include "state/sign_off_values.h"
#include "state/ui/report_pdf.h"

namespace qv5123 {
namespace {

constexpr const char* kAboutReport = "report";

/// Reads the files that the user has named and writes the report; what went wrong, in words.
struct ReportWork {
  SignOff report;
  std::filesystem::path out;
  std::vector<std::pair<const char*, std::filesystem::path>> files;  ///< with their roles
  std::filesystem::path limits;
  WriteJournal journal;

  FileResult operator()() {
    report.journal = journal_summary(journal);
    for (const auto& [role, path] : files) {
      std::string bytes;
      const FileResult read = read_whole_file(path, bytes);
      if (!read.ok()) return read;
      report.files.push_back(sign_off_file(role, path_text(path.filename()), bytes));
    }
    if (FileResult judging = judge(); !judging.ok()) return judging;
    return write_file_atomically(out, bytes());
  }

 private:
  FileResult judge() {
    if (limits.empty()) return {};
    std::string text;
    const FileResult read = read_whole_file(limits, text);
    if (!read.ok()) return read;
    const Limits found = read_limits(text);
    if (!found.faults.empty()) return {path_text(limits) + ": " + found.faults.front()};
    report.limits = judged(found.limits, figures_of(report));
    return {};
  }
  std::string bytes() const {
    const std::string extension = lower_case(path_text(out.extension()));
    if (extension == ".pdf") return sign_off_pdf(report).toStdString();
    return extension == ".json" ? sign_off_json(report) : sign_off_html(report);
  }
};

}  // namespace

ReportTool::ReportTool(Surroundings surroundings) : surroundings_(std::move(surroundings)) {
  QAction* action = surroundings_.frame.tools().addAction("&Report...");
  action->setObjectName("report");
  action->setStatusTip("Writes what is known of the board to a file that can be signed");
  QObject::connect(action, &QAction::triggered, action, [this] { open(); });
}

// Its flows own nothing of the dialog, which the frame would delete as well.
ReportTool::~ReportTool() {
  flows_.cancel();
  delete dialog_;
}

SignOff ReportTool::known() const {
  CQV5123View& view = surroundings_.view;
  SignOff report;
  report.program = "QV5123 " QV5123_VERSION;
  report.time = iso_time(std::chrono::system_clock::now());
  report.port = surroundings_.port();
  // The version box stands at 0 where nothing was loaded.
  const UserDataImage& image = view.document().user_data;
  take_board(report, surroundings_.greeting(), image.loaded() ? &image : nullptr);
  report.pages = sign_off_pages(view.values());
  for (std::size_t page = 0; page < view.values().pages(); ++page)
    if (const TuningDesk* desk = view.values().desk(page)) take_desk(report, *desk, view.values());
  return report;
}

void ReportTool::open() {
  if (!dialog_) {
    dialog_ = new ReportDialog(answers_, &surroundings_.frame);
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog_, &ReportDialog::file_wanted, dialog_,
                     [this](QLineEdit* edit) { flows_.spawn(choose_file(edit)); });
    QObject::connect(dialog_, &QDialog::accepted, dialog_, [this] {
      answers_ = dialog_->answers();
      flows_.spawn(save(answers_));
    });
  }
  dialog_->open();
}

Task<> ReportTool::choose_file(QPointer<QLineEdit> edit) {
  // "Limits file", "Firmware file", "Font file".
  const std::string what = lower_case(from_qt(edit->accessibleName()));
  FileChoice choice{"All Files (*.*)|*.*||",
                    {},
                    {},
                    "Choose the " + what + " for the report",
                    what.substr(0, what.find(' '))};
  const auto chosen = co_await surroundings_.prompts.choose_open(std::move(choice));
  if (chosen && edit) edit->setText(path_to_qt(*chosen));
}

Task<> ReportTool::save(ReportAnswers answers) {
  FileChoice choice{"Web page (*.html)|*.html|PDF (*.pdf)|*.pdf|JSON (*.json)|*.json||", "html",
                    "sign-off.html", "Save the sign-off report", "report"};
  const auto out = co_await surroundings_.prompts.choose_save(std::move(choice));
  if (!out) co_return;
  std::filesystem::path path = *out;
  const std::string trouble = co_await write(std::move(path), std::move(answers));
  surroundings_.view.say(trouble.empty() ? StatusRank::outcome : StatusRank::failure, kAboutReport,
                         trouble.empty() ? "Report written: " + path_text(*out) : trouble);
}

Task<std::string> ReportTool::write(std::filesystem::path out, ReportAnswers answers) {
  ReportWork work{known(), out, {}, to_path(answers.limits), surroundings_.history.journal()};
  work.report.serial_typed = from_qt(answers.serial_number);
  work.report.notes = from_qt(answers.notes);
  const auto add = [&work](const char* role, const std::filesystem::path& path) {
    if (!path.empty()) work.files.emplace_back(role, path);
  };
  add("Setting file", surroundings_.view.document().setting_file);
  add("Firmware", to_path(answers.firmware));
  add("Font", to_path(answers.font));
  std::function<FileResult()> writing = std::move(work);
  std::function<void(const std::string&)> slow = [this](const std::string& text) {
    surroundings_.view.say(StatusRank::failure, kAboutReport, text);
  };
  const FileResult written =
      co_await write_in_background(surroundings_.files, surroundings_.view.scheduler(), std::move(slow),
                                   std::move(out), std::move(writing));
  co_return written.text;
}

}  // namespace qv5123
