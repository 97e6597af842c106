#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/board_cable.h"
#include "support/program.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

/// qv5123ctl as a user starts it, in a folder of its own, and a simulated board for it.
class CtlTest : public testing::Test {
 protected:
  struct Result {
    int code;
    std::string out;
    std::string err;
    nlohmann::json json() const { return nlohmann::json::parse(out); }
  };

  TemporaryFolder folder;
  std::unique_ptr<BoardCable> cable;
  std::unique_ptr<Program> board;

  std::unique_ptr<Program> start(std::vector<std::string> arguments) const {
    return std::make_unique<Program>("qv5123ctl", std::move(arguments), folder.path());
  }
  Result ctl(std::vector<std::string> arguments) const {
    const auto program = start(std::move(arguments));
    const std::string out = program->output();
    const std::string err = program->errors();
    return {program->end(), out, err};
  }

  /// The board is at the cable's port, which is "board" where ports have such names; it prints every frame
  /// that it gets.
  void plug_in(std::vector<std::string> options = {"--trace"}) {
    if (!cable) cable = std::make_unique<BoardCable>();
    for (const std::string& option : BoardCable::simulator_options()) options.push_back(option);
    board = std::make_unique<Program>("qv5123sim", options, folder.path());
    ASSERT_NE(board->line(), "");
  }
  Result on_board(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--port", BoardCable::port()});
    return ctl(std::move(arguments));
  }

  void copy_resource(const std::string& name) const {
    std::filesystem::copy_file(source_folder() / "resources" / name, folder.path() / name);
  }
};

}  // namespace qv5123::test
