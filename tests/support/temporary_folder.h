#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <thread>

#include "base/atomic_file.h"

namespace qv5123::test {

/// A folder of the running test's own, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() { std::filesystem::create_directories(path_); }
  ~TemporaryFolder() { remove(); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
  std::filesystem::path write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return path_ / name;
  }
  std::string read(const std::filesystem::path& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// How many files and folders it holds.
  std::ptrdiff_t size() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
  /// Windows removes nothing that somebody still looks at: a program that has just ended, one that searches
  /// new files. That passes, and is no reason to end all the tests.
  void remove() const {
    constexpr int kTries = 100;
    std::error_code error;
    for (int i = 0; i < kTries; ++i) {
      std::filesystem::remove_all(path_, error);
      if (!error) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::cerr << "The test's folder stays: " << path_ << ": " << error.message() << "\n";
  }

  const std::filesystem::path path_ = std::filesystem::temp_directory_path() /
                                      ("qv5123_" + std::to_string(detail::process_number()) + "_" +
                                       testing::UnitTest::GetInstance()->current_test_info()->name());
};

/// The same, and the current one for the time of the test.
class CurrentFolder : public TemporaryFolder {
 public:
  CurrentFolder() { std::filesystem::current_path(path()); }
  ~CurrentFolder() {
    std::error_code error;
    std::filesystem::current_path(before_, error);
  }

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace qv5123::test
