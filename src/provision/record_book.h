#pragma once

#include <filesystem>
#include <string>

#include "provision/recipe.h"

/// The files of a line that are more than one unit's. All of it may take long; several programs may do it at
/// the same time.
namespace qv5123 {

/// The records of the units, one JSON line each. Without a path none are kept.
class RecordBook {
 public:
  explicit RecordBook(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& path() const { return path_; }
  /// Tries the file, and keeps room on the disk for the records of units that are about to begin, in a file
  /// beside. Why there is none, in words; empty when there is.
  std::string keep_room() const;
  /// Appends a record and returns once it is on the disk, with room for others beside it where there is any.
  /// A file that ends with something else than a record is left as it is. Why the record is not there, in
  /// words; empty when it is.
  std::string append(const std::string& line) const;

 private:
  std::filesystem::path room() const;

  const std::filesystem::path path_;
};

struct TakenSerial {
  std::string serial;
  std::string problem;  ///< in words; empty when there is a serial number
};
/// The next serial number. That it is used is on the disk before it is returned: one may be lost with its
/// unit, none is given twice.
TakenSerial take_serial(const SerialSource& source);
/// The one that comes after `ahead` more, which stay unused as it does.
TakenSerial next_serial(const SerialSource& source, int ahead = 0);

}  // namespace qv5123
