#include "state/write_history.h"

namespace qv5123 {

void WriteHistory::note(const WriteEvent& event) {
  if (event.result.bytes_sent == 0) return;
  const std::string line = journal_line(record_of(event, clock_()));
  journal_.add_line(line);
  if (files_) files_->add(line);
  if (told_) told_();
}

}  // namespace qv5123
