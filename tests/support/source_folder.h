#pragma once

#include <filesystem>

namespace qv5123::test {

/// The folder that the project is in, with its resources.
std::filesystem::path source_folder();

}  // namespace qv5123::test
