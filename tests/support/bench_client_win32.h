#pragma once

#include <winsock2.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace qv5123 {

/// A connection to the program that holds the far ends of the COM ports, one command and one answer a line.
class BenchClient {
 public:
  BenchClient() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no sockets");
    socket_ = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    const char* port = std::getenv("QV5123_BENCH_PORT");
    if (port == nullptr)
      throw std::runtime_error("QV5123_BENCH_PORT is not set: start by scripts/test-windows");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(std::atoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
      throw std::runtime_error("the port bench does not answer");
  }
  ~BenchClient() {
    closesocket(socket_);
    WSACleanup();
  }

  std::string ask(const std::string& command) {
    const std::string line = command + "\n";
    if (::send(socket_, line.data(), static_cast<int>(line.size()), 0) != static_cast<int>(line.size()))
      throw std::runtime_error("the port bench has gone");
    std::string answer;
    for (char byte = 0; recv(socket_, &byte, 1, 0) == 1 && byte != '\n';) answer += byte;
    return answer;
  }

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

}  // namespace qv5123
