#include "state/write_history.h"

namespace qv5123 {

void WriteHistory::note(const WriteEvent& event) {
  if (event.result.bytes_sent > 0) add(record_of(event, clock_()));
}

void WriteHistory::note_connection() {
  const std::size_t size = journal_.size();
  if (size > 0 && !is_connection(journal_.at(size - 1))) add(connection_record(clock_()));
}

void WriteHistory::add(const WriteRecord& record) {
  const std::string line = journal_line(record);
  journal_.add_line(line);
  if (files_) files_->add(line);
  if (told_) told_();
}

}  // namespace qv5123
