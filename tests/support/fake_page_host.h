#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "console/status_board.h"
#include "support/fake_prompts.h"
#include "support/fake_wire.h"
#include "support/inline_background.h"

namespace qv5123::test {

/// The main form as a page sees it, over a fake wire. Nothing is written to any file.
class FakePageHost : public PageHost {
 public:
  explicit FakePageHost(FakeWire& wire) : wire_(wire) {}

  CQV5123Doc doc;
  FakePrompts user;
  InlineBackground work;
  std::vector<std::string> statuses;
  std::vector<std::optional<int>> progress;
  std::string console;  ///< what the page appended; the chip's text is in the wire's
  std::vector<bool> busy;

  int user_data_writes = 0;    ///< of both kinds of save
  UserDataImage written;       ///< the image as last written
  bool write_succeeds = true;  ///< what the saves tell
  /// What "QV512xUser.dat" holds; nothing while there is no such file.
  std::optional<UserDataImage> current_directory;
  /// The page's own part in a full save; may be null.
  Page* page = nullptr;

  std::string last_status() const { return statuses.empty() ? std::string() : statuses.back(); }

  CommandLink& link() override { return wire_.link; }
  CQV5123Doc& document() override { return doc; }
  Prompts& prompts() override { return user; }
  Background& background() override { return work; }
  void show_status(const std::string& text) override { statuses.push_back(text); }
  void send_and_tell(const std::string& what, Traffic traffic,
                     std::shared_ptr<const WriteNote> note = {}) override {
    std::string text = sent_text(what, traffic);
    flows_.spawn(tell(what, link().send(noted_job(std::move(traffic), std::move(note))), std::move(text)));
  }
  void show_progress(std::optional<int> percent) override { progress.push_back(percent); }
  void append_console(const std::string& text) override { console += text; }
  Task<bool> write_user_data_file() override {
    if (write_succeeds) {
      ++user_data_writes;
      written = doc.user_data;
    }
    co_return write_succeeds;
  }
  Task<bool> save_everything() override {
    if (page) page->save_to_user_data();
    co_return co_await write_user_data_file();
  }
  Task<> reload_user_data_file() override {
    if (!current_directory) co_return;
    doc.user_data.assign(current_directory->bytes());
    doc.user_data.mark_loaded();
  }
  void set_busy(bool on) override { busy.push_back(on); }

 private:
  Task<> tell(std::string what, Pending<JobResult> sent, std::string text) {
    const JobResult result = co_await sent;
    show_status(left_whole(result) ? text : not_sent_text(what, result));
  }

  FakeWire& wire_;
  FlowSet flows_;
};

}  // namespace qv5123::test
