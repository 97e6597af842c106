// The tour that the program makes of itself.
#include <QDialog>
#include <array>
#include <string_view>
#include <utility>

#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/port_state.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "app/ui/report_tool.h"
#include "app/ui/tour.h"
#include "app/ui/tour_pages.h"
#include "base/atomic_file.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// What the simulated board must hold; one limit of them it misses.
constexpr std::string_view kLimits =
    "mean color difference <= 6\n"
    "worst color difference <= 20\n"
    "lens ripple <= 5\n"
    "field ripple <= 2\n"
    "lsc.parameter1.r, 100, 2000\n"
    "failed writes <= 0\n";

}  // namespace

Task<> Program::make_tour() {
  Tour::Plan plan{*options_.tour, options_.tour_size, options_.check_layout};
  TourPages pages(*view_, parts_.aim_camera);
  if (parts_.aim_camera) {
    plan.fill = [&pages](PageId id) { return pages.fill(id); };
    plan.filled = [this] { return leave_report(*options_.tour); };
  }
  Tour tour(*frame_, *view_, std::move(plan));
  std::vector<PortInfo> ports = co_await ports_.run<std::vector<PortInfo>>(parts_.list_ports);
  const std::vector<std::string> faults = co_await tour.run(
      [this, &ports] { return make_port_dialog(std::move(ports), view_->port()->settings(), {}); });
  for (const std::string& fault : faults) parts_.report(fault);
  co_await end(faults.empty() ? 0 : 1);
}

Task<> Program::leave_report(std::filesystem::path folder) {
  constexpr std::array kNames{"sign-off.html", "sign-off.pdf", "sign-off.json"};
  const std::filesystem::path limits = folder / "limits.txt";
  std::function<FileResult()> write = [limits] { return write_file_atomically(limits, kLimits); };
  co_await files_.run<FileResult>(std::move(write));
  for (const char* name : kNames) {
    ReportAnswers answers;
    answers.limits = path_to_qt(limits);
    const std::string trouble = co_await report_->write(folder / name, std::move(answers));
    if (!trouble.empty()) parts_.report(trouble);
  }
}

}  // namespace qv5123
