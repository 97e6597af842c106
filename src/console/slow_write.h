#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include "base/atomic_file.h"
#include "console/page_host.h"

namespace qv5123 {

/// How long a file may take to be written before that is said.
inline constexpr std::chrono::seconds kSlowWrite{2};

/// Does `work`, which writes the file `path`, in the background. Where that takes long `say` is told "Still
/// writing NAME ..."; what came of it is the caller's to say.
Task<FileResult> write_in_background(Background& background, Scheduler& scheduler,
                                     std::function<void(const std::string&)> say, std::filesystem::path path,
                                     std::function<FileResult()> work);
/// The same for a page: it stands as a failure until the page says what came of it.
Task<FileResult> write_in_background(PageHost& host, std::filesystem::path path,
                                     std::function<FileResult()> work);

}  // namespace qv5123
