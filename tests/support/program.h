#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123::test {

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
  /// The same of its errors, of which errors() then tells the rest.
  std::string expect_error(std::string_view wanted);
  /// All that it prints from here on, and all of its errors. Lines end with LF on every system.
  std::string output();
  std::string errors();
  void type(std::string_view text);
  /// Its exit code; -1 when a signal ended it. Where there are no signals, any but 0 ends it.
  int end(int signal = 0);
  /// Where there are signals, and times of processes to be read.
  void signal(int number) const;
  /// Seconds of processor time it has used.
  double processor_time() const;

 private:
  struct Process;
  void read_output(std::string& text, std::string_view wanted);
  void read_errors(std::string& text, std::string_view wanted);

  const std::unique_ptr<Process> process_;
  std::string printed_;
  std::string complained_;
};

}  // namespace qv5123::test
