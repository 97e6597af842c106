#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "console/page_host.h"

namespace qv5123 {

class CQV5123View;

/// The main form as one page sees it: what the page has to say is about that page, whichever is shown by
/// then.
class NamedHost final : public PageHost {
 public:
  NamedHost(CQV5123View& form, std::string name) : form_(form), name_(std::move(name)) {}

  CommandLink& link() override;
  CQV5123Doc& document() override;
  Prompts& prompts() override;
  Background& background() override;
  void show_status(const std::string& text) override;
  void show_failure(const std::string& text) override;
  void show_status_of(const std::string& kind, const std::string& text) override;
  void show_failure_of(const std::string& kind, const std::string& text) override;
  void send_and_tell(const std::string& what, Traffic traffic,
                     std::shared_ptr<const WriteNote> note) override;
  void show_progress(std::optional<int> percent) override;
  void append_console(const std::string& text) override;
  Task<bool> write_user_data_file() override;
  Task<bool> save_everything() override;
  Task<> reload_user_data_file() override;
  void set_busy(bool busy) override;
  void draft_saved() override;

 private:
  CQV5123View& form_;
  const std::string name_;
};

}  // namespace qv5123
