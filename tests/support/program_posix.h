#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123::test {

/// Reads from `fd` until `text` holds `wanted`, the end, or ten seconds have passed.
void read_until(int fd, std::string& text, std::string_view wanted);

/// The folder of the programs under test.
std::filesystem::path program_folder();

/// A program of ours, started with arguments; what it prints can be read, its end awaited.
class Program {
 public:
  explicit Program(const std::string& name, std::vector<std::string> arguments,
                   const std::filesystem::path& folder = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// The next line it prints.
  std::string line();
  /// What it prints up to and including `wanted`.
  std::string expect(std::string_view wanted);
  /// All that it prints from here on, and all of its errors.
  std::string output();
  std::string errors();
  void type(std::string_view text);
  /// Its exit code; -1 when a signal ended it.
  int end(int signal = 0);
  void signal(int number) const;
  /// Seconds of processor time it has used.
  double processor_time() const;

 private:
  pid_t pid_ = -1;
  int in_ = -1;
  int out_ = -1;
  int err_ = -1;
  std::string printed_;
};

}  // namespace qv5123::test
