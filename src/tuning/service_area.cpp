#include "tuning/service_area.h"

#include <utility>

#include "tuning/raw_access.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {

void ServiceArea::reveal() {
  select(0);
  view_->reveal_area();
}

void ServiceArea::select(std::size_t row) {
  append(parameter_line(row, host_.document().user_data, LineOf::selection));
}

void ServiceArea::set(std::size_t row, std::string_view value) {
  if (row < kUserdataParameterCount) flows_.spawn(run_set(row, byte_of_field(value)));
}

Task<> ServiceArea::run_set(std::size_t row, int value) {
  UserDataImage& image = host_.document().user_data;
  image.set_entry(userdata_parameters()[row].entry, value);
  Traffic traffic = parameter_traffic(row, image);
  co_await host_.write_user_data_file();
  co_await host_.link().send(std::move(traffic));
  // The file of the current directory wins over what was set, also where it is not the one just written.
  co_await host_.reload_user_data_file();
  append(parameter_line(row, image, LineOf::set));
}

}  // namespace qv5123
