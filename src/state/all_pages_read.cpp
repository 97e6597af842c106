#include "state/all_pages_read.h"

#include <string_view>
#include <utility>

#include "tuning/page_flows.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

Task<bool> read_page(DeskHost& host, ValueStates& states, std::size_t page) {
  const std::uint64_t asked_at = states.jobs();
  PageLoad load;
  load.trigger = make_model(states.page_name(page))->texts().trigger;
  load.take = [&states, page, asked_at](std::string_view reply) {
    return states.page_reported(page, reply, asked_at);
  };
  co_return co_await load_from_chip(host, std::move(load));
}

}  // namespace

Task<std::vector<std::string>> read_all_pages(DeskHost& host, ValueStates& states,
                                              std::function<void(std::size_t page)> begins) {
  std::vector<std::string> failed;
  for (std::size_t page = 0; page < states.pages(); ++page) {
    begins(page);
    const bool read = co_await read_page(host, states, page);
    if (!read) failed.push_back(states.page_name(page));
  }
  co_return failed;
}

std::string pages_read_text(std::size_t pages, const std::vector<std::string>& failed) {
  if (failed.empty()) return std::to_string(pages) + " pages read from the chip";
  std::string text;
  for (const std::string& name : failed) text += (text.empty() ? "Not read from the chip: " : ", ") + name;
  return text;
}

}  // namespace qv5123
