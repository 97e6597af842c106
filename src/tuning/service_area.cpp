#include "tuning/service_area.h"

#include <utility>

#include "console/status_board.h"
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

Task<bool> ServiceArea::may_send_group(std::size_t row) {
  const UserDataImage& image = host_.document().user_data;
  const std::string others = parameter_others(row, image);
  if (agreed_ || others.empty() || image.loaded()) co_return true;
  Question question = careful_question(
      "No setting file was loaded. The others of its group are sent with it as they stand:\n\n" + others +
      "\nSend them all the same?");
  const Answer answer = co_await host_.prompts().ask(std::move(question));
  agreed_ = answer == Answer::yes;
  co_return agreed_;
}

Task<> ServiceArea::run_set(std::size_t row, int value) {
  const bool wanted = co_await may_send_group(row);
  if (!wanted) co_return;
  UserDataImage& image = host_.document().user_data;
  image.set_entry(userdata_parameters()[row].entry, value);
  Traffic traffic = parameter_traffic(row, image);
  co_await host_.write_user_data_file();
  const std::string name = userdata_parameters()[row].name;
  std::string sent = sent_text(name, traffic);
  const JobResult result = co_await host_.link().send(std::move(traffic));
  if (left_whole(result))
    host_.show_status(sent);
  else
    host_.show_failure(not_sent_text(name, result));
  // The file of the current directory wins over what was set, also where it is not the one just written.
  co_await host_.reload_user_data_file();
  append(parameter_line(row, image, LineOf::set));
}

}  // namespace qv5123
