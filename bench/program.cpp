#include "bench/program.h"

#include "bench/answer.h"
#include "bench/sockets.h"

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <utility>

namespace bench {

namespace {

constexpr std::chrono::seconds kPatience{20};

Answer Ask(const Channel& connection, std::string_view request) {
  connection.Send(AsBytes(request));
  Answer answer;
  std::array<unsigned char, 65536> room;
  while (!answer.Take({reinterpret_cast<const char*>(room.data()), connection.Receive(room)})) {
  }
  return answer;
}

}  // namespace

std::string GetRequest(std::string_view path, std::uint16_t port) {
  return "GET " + std::string{path} + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n";
}

std::string PostRequest(std::string_view path, std::uint16_t port, const nlohmann::json& body) {
  const auto text = body.dump();
  return "POST " + std::string{path} + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
         "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
}

Program::Program(std::string_view name, const nlohmann::json& settings)
    : port_{FreePort()}, transport_{settings.contains("tls") ? Transport::tls : Transport::plain}, name_{name} {
  auto config = root_.DefaultRestConfig();
  config["listen"][0]["port"] = port_;
  config.update(settings);
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
  return FirstAnswerTo(GetRequest(path, port_));
}

std::string Program::FirstAnswerTo(std::string_view request) const {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    if (auto connection = TryConnectTcp(port_); connection.Number() >= 0) {
      if (const auto answer = Ask({std::move(connection), transport_}, request); answer.Status() == 200) return answer.Text();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  throw std::runtime_error(name_ + " does not answer " + std::string{request});
}

nlohmann::json Program::FirstElements(std::string_view resource) const {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    const auto answer = FirstAnswer(resource);
    auto elements = nlohmann::json::parse(answer.substr(answer.find("\r\n\r\n")));
    if (!elements.empty()) return elements;
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  throw std::runtime_error(name_ + " shows nothing of " + std::string{resource});
}

void Program::Stop() {
  process_->Signal(SIGTERM);
  process_->WaitForEnd();
}

}  // namespace bench
