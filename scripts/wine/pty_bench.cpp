// Holds the far ends of serial lines for tests that run under Wine, where a test cannot make a
// pseudo-terminal itself. The lines' near ends appear in the folder given, the prefix's dosdevices.
// Prints the number of the loopback port it listens on, then serves until its standard input ends.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "support/hex_text.h"
#include "support/pty_line_posix.h"

namespace {

using qv5123::PtyLine;

/// What a connection has: a line whose far end is in the test's hands, or two for the programs at both ends.
struct Lines {
  std::unique_ptr<PtyLine> line;
  std::unique_ptr<PtyLine> other;

  ~Lines() { end(); }
  /// Neither reads on while the other goes.
  void end() {
    for (const auto& one : {line.get(), other.get()})
      if (one) one->stall();
    line.reset();
    other.reset();
  }
};

std::string obey(const std::string& folder, Lines& lines, std::istream& command) {
  std::string verb, argument, second;
  command >> verb >> argument >> second;
  std::unique_ptr<PtyLine>& line = lines.line;
  if (verb == "line" || verb == "cross") {
    lines.end();
    line = std::make_unique<PtyLine>(folder + "/" + argument);
  }
  if (verb == "cross") {
    lines.other = std::make_unique<PtyLine>(folder + "/" + second);
    line->pass_on_to(*lines.other);
    lines.other->pass_on_to(*line);
  }
  if (!line) return "no line";
  if (verb == "received") return qv5123::to_hex(line->received(std::stoul(argument)));
  if (verb == "baud_rate") return std::to_string(line->baud_rate());
  if (verb == "send") line->send(qv5123::from_hex(argument));
  if (verb == "stall") line->stall();
  if (verb == "hang_up") line->hang_up();
  if (verb == "plug_in") line->plug_in();
  return "ok";
}

/// One connection is one line, which goes with it.
void serve(const std::string& folder, int connection) {
  Lines lines;
  std::string text;
  for (char byte = 0; read(connection, &byte, 1) == 1;) {
    if (byte != '\n') {
      text += byte;
      continue;
    }
    std::string answer;
    try {
      std::istringstream command(text);
      answer = obey(folder, lines, command);
    } catch (const std::exception& error) {
      answer = std::string("failed: ") + error.what();
    }
    answer += '\n';
    if (write(connection, answer.data(), answer.size()) < 0) break;
    text.clear();
  }
  close(connection);
}

int listen_on_loopback() {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 4) != 0) return -1;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  std::cout << ntohs(address.sin_port) << std::endl;
  return listener;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: pty_bench FOLDER\n";
    return 2;
  }
  const int listener = listen_on_loopback();
  if (listener < 0) return 1;
  while (true) {
    pollfd polled[] = {{listener, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    if (poll(polled, 2, -1) < 0) continue;
    if (polled[1].revents != 0) return 0;
    serve(argv[1], accept(listener, nullptr, nullptr));
  }
}
