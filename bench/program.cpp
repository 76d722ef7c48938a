#include "bench/program.h"

#include "bench/sockets.h"

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace bench {

namespace {

std::string Ask(const Socket& connection, std::string_view request) {
  connection.Send(AsBytes(request));
  std::string answer;
  std::array<unsigned char, 65536> piece;
  for (;;) {
    answer.append(reinterpret_cast<const char*>(piece.data()), connection.Receive(piece));
    const auto headEnd = answer.find("\r\n\r\n");
    if (headEnd == std::string::npos) continue;
    constexpr std::string_view kLength = "Content-Length: ";
    const auto length = answer.find(kLength);
    if (length > headEnd) throw std::runtime_error("an answer without length: " + answer);
    if (answer.size() >= headEnd + 4 + std::stoul(answer.substr(length + kLength.size()))) return answer;
  }
}

}  // namespace

std::string GetRequest(std::string_view path, std::uint16_t port) {
  return "GET " + std::string{path} + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n";
}

Program::Program(std::string_view name, const nlohmann::json& limits) : port_{FreePort()}, name_{name} {
  auto config = root_.DefaultRestConfig();
  config["listen"][0]["port"] = port_;
  config["limits"] = limits;
  root_.WriteRestConfig(config.dump());
}

void Program::Start() {
  process_ = std::make_unique<test_support::Process>(
      test_support::ProcessOptions{.program = test_support::ProgramBesideThisTest(name_),
                                   .arguments = {},
                                   .environment = {{"ARA_ROOT", root_.Path().string()}, {"ARA_LOG", "file:" + root_.LogPath().string()}},
                                   .outputPath = root_.Path() / "stdout",
                                   .errorPath = root_.Path() / "stderr"});
}

std::string Program::FirstAnswer(std::string_view path) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{20};
  while (std::chrono::steady_clock::now() < end) {
    if (const auto connection = TryConnectTcp(port_); connection.Number() >= 0) {
      if (auto answer = Ask(connection, GetRequest(path, port_)); answer.starts_with("HTTP/1.1 200")) return answer;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  throw std::runtime_error(name_ + " does not answer " + std::string{path});
}

void Program::Stop() {
  process_->Signal(SIGTERM);
  process_->WaitForEnd();
}

}  // namespace bench
