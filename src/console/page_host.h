#pragma once

#include <optional>
#include <string>

#include "base/background.h"
#include "base/scheduler.h"
#include "console/document.h"
#include "console/prompts.h"
#include "link/command_link.h"

namespace qv5123 {

/// What a page's work needs of whoever runs it, window or command line: the way to the chip, and somebody to
/// tell what becomes of it.
class DeskHost {
 public:
  virtual ~DeskHost() = default;

  virtual CommandLink& link() = 0;
  Scheduler& scheduler() { return link().scheduler(); }

  /// Shows a message of at most 256 characters in the status bar's message pane.
  virtual void show_status(const std::string& text) = 0;
  /// Shows that something did not work. It stays there, beside what else is said, until the user has read it
  /// or the same page has something to show again.
  virtual void show_failure(const std::string& text) { show_status(text); }
  /// The same about `kind`, which is no page's own: it ends only what stands of that kind, and only that ends
  /// it.
  virtual void show_status_of(const std::string& kind, const std::string& text) {
    (void)kind;
    show_status(text);
  }
  virtual void show_failure_of(const std::string& kind, const std::string& text) {
    (void)kind;
    show_failure(text);
  }
  /// Appends to the main console and scrolls to its end.
  virtual void append_console(const std::string& text) = 0;
  /// Sends flushes that nothing may come between and says what came of it, under the name that the user knows
  /// it by: "Saturation: 1 register sent". For controls that have no text of their own.
  /// `note`, which may be null, tells what else there is to know of it.
  virtual void send_and_tell(const std::string& what, Traffic traffic,
                             std::shared_ptr<const WriteNote> note = {}) {
    (void)what;
    link().send(noted_job(std::move(traffic), std::move(note)));
  }
  /// Shows how far a long operation is, 0..100, beside the status message. Taken away again by an empty
  /// `percent`, and by the end of the last work under set_busy().
  virtual void show_progress(std::optional<int> percent) = 0;
  /// Work that closing the window should ask about first, such as a full save, begins or ends. Calls nest,
  /// and the end of the last takes the progress away.
  virtual void set_busy(bool busy) = 0;
};

/// What a page may use of the main form. Everything belongs to the user-interface thread and outlives the
/// pages.
class PageHost : public DeskHost {
 public:
  virtual CQV5123Doc& document() = 0;
  virtual Prompts& prompts() = 0;
  /// For files that are written, or may be large. The program does not end before what was begun is done.
  virtual Background& background() = 0;

  /// Writes the user data image to the remembered setting file, asking for one where none was ever chosen.
  /// Says "File open error !!" itself. False when nothing was written.
  virtual Task<bool> write_user_data_file() = 0;
  /// Every page's SaveToUserData in its fixed order, then write_user_data_file().
  virtual Task<bool> save_everything() = 0;
  /// Reads "QV512xUser.dat" of the current directory into the image, whatever setting file is remembered. A
  /// file that does not exist changes nothing; one that cannot be read is named in the status bar.
  virtual Task<> reload_user_data_file() = 0;
  /// What Page::draft() told before is in a file now.
  virtual void draft_saved() {}
};

/// What the main form knows of a page.
class Page {
 public:
  virtual ~Page() = default;
  /// Copies the page's values into the user data image. The main form writes the file afterwards.
  virtual void save_to_user_data() {}
  /// Puts into `image` what save_to_user_data() would, but for text that is still being typed. The page stays
  /// as it is, so that it can be asked at any time.
  virtual void put_values(UserDataImage&) const {}
  /// Asked when the program is to end: false when the user stays to save what no setting file holds.
  virtual Task<bool> may_leave() { co_return true; }
  /// What neither the user data nor a file of the page's own holds yet, as text that another run's page goes
  /// on with; may be empty.
  virtual std::string draft() const { return {}; }
  /// Whether "Save File..." writes the remembered setting file once this page has saved, before it asks for
  /// the file to write.
  virtual bool save_writes_file() const { return false; }
  /// Takes the page's values from the user data image.
  virtual void reload_from_user_data() {}
  /// Chosen from the menu while it exists already.
  virtual void chosen_again() {}
  /// What the chip must still be told when the program ends, so that it is left as it would be without the
  /// page, such as a colour picker that is switched off. Asked for once, after everything else has left or
  /// was dropped.
  virtual Traffic leave() { return {}; }
  /// Reads the page's values from the chip, as its own button for that does. The tour calls it.
  virtual void read_back() {}
  /// True while what the page asked the chip for at its opening is still under way. The tour waits for it.
  virtual bool loading() const { return false; }
};

/// Tells the host that something lasts which closing the window should ask about.
class BusyScope {
 public:
  explicit BusyScope(DeskHost& host) : host_(host) { host_.set_busy(true); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;
  ~BusyScope() { host_.set_busy(false); }

 private:
  DeskHost& host_;
};

}  // namespace qv5123
