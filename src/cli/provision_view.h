#pragma once

#include <string>

#include "cli/output.h"
#include "provision/production_line.h"

namespace qv5123 {

/// The line as somebody sees it who started it: its results on stdout, one line for each unit; on stderr a
/// row for each place on a terminal, elsewhere a line for each step.
class ProvisionView final : public LineView {
 public:
  ProvisionView(Output& out, const Recipe& recipe) : out_(out), recipe_(recipe) {}

  void step_began(const PlaceState& place) override;
  void unit_over(const PlaceState& place, const UnitRecord& record) override;
  void trouble(const std::string& text) override;
  /// Draws the rows anew; nothing where there is no terminal.
  void draw(const std::vector<PlaceState>& places);
  /// Takes the rows away.
  void clear();

 private:
  Output& out_;
  const Recipe& recipe_;
  std::size_t drawn_ = 0;
};

}  // namespace qv5123
