#include <utility>

#include "base/delay.h"
#include "base/text.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "console/image_transfer.h"
#include "console/setting_file.h"
#include "provision/unattended.h"

namespace qv5123 {
namespace {

struct DownloadOptions {
  std::filesystem::path file;
  std::string expect;
  bool lenient = false;
};

/// The number of blocks is told in one byte. The window sends a file that makes it 0 like any other, and the
/// chip then keeps what it has; here that would count as done.
constexpr std::size_t kLargest = 255 * 256;

/// Before the chip is told of an image that then does not come.
void check_file(TransferKind kind, const DownloadOptions& options) {
  const std::filesystem::path& path = options.file;
  if (kind == TransferKind::user_data) {
    read_whole_settings(path, options.lenient);
    return;
  }
  const std::size_t size = read_file(path).size();
  if (size > 0 && size <= kLargest) return;
  refuse(path_text(path) + " has " + std::to_string(size) + " bytes, a download takes 1 to " +
         std::to_string(kLargest));
}

/// One download, and what the chip says meanwhile and afterwards.
class Download {
 public:
  Download(Chip& chip, TransferKind kind, const DownloadOptions& options)
      : chip_(chip), kind_(kind), options_(options), prompts_(options.file) {
    // What was to be refused was so before anything was sent.
    if (kind == TransferKind::user_data) prompts_.answer(Answer::yes);
  }

  Task<ExitCode> run() {
    chip_.on_console([this](const std::string& text) { take_console(text); });
    // The second time it ends where it is, and says what the chip still expects.
    chip_.on_interrupt([this] { transfer_.cancel(); }, 2);
    chip_.notice_loss_itself(true);
    const TransferEnd end = co_await transfer_.run(kind_);
    chip_.notice_loss_itself(false);
    chip_.on_interrupt({});
    chip_.out().progress("");
    if (end == TransferEnd::lost)
      throw Complaint{ExitCode::port_failed, "The port failed in the middle of the image: " + last_said_};
    if (end == TransferEnd::cut_short)
      throw Complaint{ExitCode::port_failed, "The line stands still: " + last_said_};
    if (end == TransferEnd::not_sent) throw Complaint{ExitCode::bad_input, prompts_.last_message()};
    if (end == TransferEnd::cancelled) co_await chip_.wait_for_quiet(Chip::kQuiet, Chip::kLongestGreeting);
    if (end == TransferEnd::sent) co_await hear_out();
    const bool expected = options_.expect.empty() || heard();
    show(end, expected);
    if (end == TransferEnd::cancelled) throw Complaint{ExitCode::negative, cancelled_text()};
    if (!expected) throw Complaint{ExitCode::negative, "The chip did not say \"" + options_.expect + "\""};
    co_return ExitCode::done;
  }

 private:
  TransferView view() {
    TransferView view;
    view.set_progress = [](int) {};
    view.show_progress_text = [this](const std::string& text) { chip_.out().progress(text); };
    view.append_console = [this](const std::string& text) {
      last_said_ = bare_words(text);
      say(text);
    };
    return view;
  }

  void take_console(const std::string& text) {
    received_ += latin1_to_utf8(text);
    say(printable(text));
  }
  void say(const std::string& text) {
    chip_.out().progress("");
    chip_.out().remark(printable_line_ends(text));
  }
  static std::string printable_line_ends(std::string text) {
    std::erase(text, '\r');
    return text;
  }

  std::string cancelled_text() const {
    const bool waits = last_said_.find("the chip still") != std::string::npos;
    return waits ? "Cancelled: " + last_said_ : "Cancelled";
  }

  bool heard() const { return received_.find(options_.expect) != std::string::npos; }

  /// Until the expected text came, for as long as an answer may take; without one, what comes at once.
  Task<> hear_out() {
    const auto start = chip_.link().scheduler().now();
    const auto longest = options_.expect.empty() ? Chip::kQuiet : chip_.timeout();
    while (chip_.link().scheduler().now() - start < longest && (options_.expect.empty() || !heard())) {
      co_await Delay(chip_.link().scheduler(), kLook);
    }
    co_await chip_.wait_for_quiet(kLineEnd, Chip::kLongestGreeting);
  }

  void show(TransferEnd end, bool expected) {
    chip_.out().remark("\n");
    const bool sent = end == TransferEnd::sent;
    Json json = {{"file", path_text(options_.file)}, {"result", sent ? "sent" : "cancelled"}};
    if (!options_.expect.empty()) json["expected"] = expected;
    json["console"] = received_;
    chip_.out().result(json);
  }

  static constexpr std::chrono::milliseconds kLook{10};
  /// For the rest of a line of which the expected text is the beginning.
  static constexpr std::chrono::milliseconds kLineEnd{50};

  Chip& chip_;
  const TransferKind kind_;
  const DownloadOptions& options_;
  HeadlessPrompts prompts_;
  CQV5123Doc document_;
  ImageTransfer transfer_{chip_.link(), document_, prompts_, chip_.background(), view()};
  std::string received_;
  std::string last_said_;
};

Task<ExitCode> download(Chip& chip, TransferKind kind, const DownloadOptions& options) {
  Download download(chip, kind, options);
  co_return co_await download.run();
}

template <TransferKind kind>
ExitCode run(Context& context, const DownloadOptions& options) {
  check_file(kind, options);
  return run_on_chip(context, [&](Chip& chip) { return download(chip, kind, options); });
}

void declare(CLI::App& command, DownloadOptions& options) {
  add_path(command, "FILE", options.file, "The image")->required();
  command
      .add_option("--expect", options.expect,
                  "Wait until the chip says this on its console, for as long as --timeout")
      ->type_name("TEXT");
}

void declare_user(CLI::App& command, DownloadOptions& options) {
  declare(command, options);
  add_lenient(command, options.lenient);
}

}  // namespace

void add_download_commands(CLI::App& app, Context& context) {
  CLI::App* group = add_group(app, "download", "Send an image to the chip");
  add_command<DownloadOptions>(*group, context, "fw", "Firmware", declare, run<TransferKind::firmware>);
  add_command<DownloadOptions>(*group, context, "font", "OSD font", declare, run<TransferKind::font>);
  add_command<DownloadOptions>(*group, context, "user", "User data: a setting file", declare_user,
                               run<TransferKind::user_data>);
}

}  // namespace qv5123
