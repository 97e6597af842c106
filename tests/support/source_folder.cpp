#include "support/source_folder.h"

namespace qv5123::test {

std::filesystem::path source_folder() {
  return QV5123_SOURCE_DIR;
}

}  // namespace qv5123::test
