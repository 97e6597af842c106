// The tour that the program makes of itself.
#include <QDialog>
#include <array>
#include <utility>

#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/port_state.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "app/ui/report_tool.h"
#include "app/ui/tour.h"
#include "app/ui/tour_pages.h"

namespace qv5123 {

Task<> Program::make_tour() {
  Tour::Plan plan{*options_.tour, options_.tour_size, options_.check_layout};
  TourPages pages(*view_, parts_.aim_camera);
  if (parts_.aim_camera) plan.fill = [&pages](PageId id) { return pages.fill(id); };
  Tour tour(*frame_, *view_, std::move(plan));
  std::vector<PortInfo> ports = co_await ports_.run<std::vector<PortInfo>>(parts_.list_ports);
  const std::vector<std::string> faults = co_await tour.run(
      [this, &ports] { return make_port_dialog(std::move(ports), view_->port()->settings(), {}); });
  for (const std::string& fault : faults) parts_.report(fault);
  if (parts_.aim_camera) co_await leave_report(*options_.tour);
  co_await end(faults.empty() ? 0 : 1);
}

Task<> Program::leave_report(std::filesystem::path folder) {
  constexpr std::array kNames{"sign-off.html", "sign-off.pdf", "sign-off.json"};
  for (const char* name : kNames) {
    ReportAnswers nothing;
    const std::string trouble = co_await report_->write(folder / name, std::move(nothing));
    if (!trouble.empty()) parts_.report(trouble);
  }
}

}  // namespace qv5123
