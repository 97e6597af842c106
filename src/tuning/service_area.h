#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/task.h"
#include "console/page_host.h"

namespace qv5123 {

/// The hidden part of the ISP tune page without its window: the page's own console, and "Userdata Control".
/// Others write to the console also while nobody sees it.
class ServiceArea {
 public:
  class View {
   public:
    virtual ~View() = default;
    /// Texts bring their own line breaks and may end within a line.
    virtual void append_text(const std::string&) {}
    /// Shows the area, with the first parameter selected.
    virtual void reveal_area() {}
  };
  explicit ServiceArea(PageHost& host) : host_(host) {}
  void attach(View& view) { view_ = &view; }

  void append(const std::string& text) { view_->append_text(text); }
  void reveal();
  /// Tells the value of the parameter in `row` of the list.
  void select(std::size_t row);
  /// "Set": stores the byte that is typed, writes the user data file, and sends the parameter's group to
  /// keep. Asks first, once, where the others of the group come from no file.
  void set(std::size_t row, std::string_view value);

 private:
  Task<> run_set(std::size_t row, int value);

  Task<bool> may_send_group(std::size_t row);

  PageHost& host_;
  bool agreed_ = false;  // to groups that come from no file
  View nobody_;
  View* view_ = &nobody_;
  FlowSet flows_;
};

}  // namespace qv5123
