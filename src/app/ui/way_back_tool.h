#pragma once

#include <cstddef>
#include <string>

#include "console/prompts.h"
#include "state/way_back.h"

namespace qv5123 {

class CQV5123View;

/// "Back to here": shows what differs from a moment of the journal, and sends it when the user agrees, each
/// value as its page's own control does, with that control's other values as they were then.
class WayBackTool {
 public:
  WayBackTool(CQV5123View& view, Prompts& prompts) : view_(view), prompts_(prompts) {}

  /// `when` names the moment. Ignored while one is under way.
  void start(KnownValues then, std::size_t unnamed, std::string when);

 private:
  Task<> run(KnownValues then, std::size_t unnamed, std::string when);
  /// Adds to `way` what goes along, and tells how much is sent.
  SendingSum rehearse(WayBack& way, const KnownValues& then);
  Task<> send(WayBack::Page page, std::string what);

  CQV5123View& view_;
  Prompts& prompts_;
  Flow flow_;
};

}  // namespace qv5123
