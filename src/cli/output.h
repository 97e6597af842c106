#pragma once

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/complaint.h"

namespace qv5123 {

/// Keeps the order in which members were put in.
using Json = nlohmann::ordered_json;

/// What the program prints. Results go to stdout, all else to stderr. Of text it prints what visible() makes
/// of it: words of files and names of devices end up in it.
///
/// A write that fails is remembered instead of reported at once: what prints may be in the middle of
/// anything.
class Output {
 public:
  void use_json(bool json) { json_ = json; }
  void be_quiet(bool quiet) { quiet_ = quiet; }
  bool json() const { return json_; }
  bool quiet() const { return quiet_; }

  /// Text that has no other form, such as help.
  void print(std::string_view text);
  /// A result as text; with JSON, nothing.
  void text(std::string_view text);
  /// The whole result as JSON; without, nothing.
  void result(const Json& json);
  /// The result in the form that was asked for.
  void result(const Json& json, std::string_view text);
  /// One of several results on a line of its own, as soon as it is there.
  void event(const Json& json, std::string_view text);

  /// Text that tells of what goes on, for people only; on stderr.
  void remark(std::string_view text);
  /// A line on stderr that is not an error.
  void warning(const std::string& line);
  /// How far something is, on stderr if that is a terminal. An empty text takes it away again.
  void progress(const std::string& text);

  /// False once stdout did not take what was written.
  bool ok() const { return error_ == 0; }
  /// Finds out whether the reader has gone although nothing is being written.
  void look_for_reader();
  /// The code to end with after `code`: a reader that has gone wants no more and is no failure.
  ExitCode end(ExitCode code);

 private:
  void write(std::string_view text);

  bool json_ = false;
  bool quiet_ = false;
  int error_ = 0;
  bool progress_shown_ = false;
};

/// UTF-8 text with its control characters, which could command the terminal, as "\x1b"; all but tabs and line
/// ends.
std::string visible(std::string_view utf8);

/// Text from the chip, 8-bit characters, as UTF-8 without carriage returns. JSON takes it as it is.
std::string chip_text(std::string_view latin1);
/// The same so that it can be shown.
std::string printable(std::string_view latin1);

/// One line on stderr that names the program.
void complain(std::string text);

}  // namespace qv5123
