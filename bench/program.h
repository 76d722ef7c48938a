#pragma once

#include "bench/channel.h"
#include "tests/support/process.h"
#include "tests/support/temp_root.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace bench {

/// A bridge as a child process, with a staging root of its own, a log file there and a known HTTP port.
class Program {
 public:
  /// Prepares all and starts nothing. `name` is a program beside this one, `settings` what its REST configuration has beside its port.
  explicit Program(std::string_view name, const nlohmann::json& settings = nlohmann::json::object());

  void Start();
  /// Waits until a GET of this path is answered with 200, and gives the whole answer. Throws std::runtime_error if that takes too long.
  std::string FirstAnswer(std::string_view path) const;
  /// The same with any request.
  std::string FirstAnswerTo(std::string_view request) const;
  /// The elements of a resource, once there are some. Throws likewise.
  nlohmann::json FirstElements(std::string_view resource) const;

  const test_support::TempRoot& Root() const { return root_; }
  std::uint16_t Port() const { return port_; }
  pid_t Pid() const { return process_->Pid(); }
  void Stop();

 private:
  test_support::TempRoot root_;
  std::uint16_t port_;
  Transport transport_;
  std::string name_;
  std::unique_ptr<test_support::Process> process_;
};

/// Requests to a program on this port.
std::string GetRequest(std::string_view path, std::uint16_t port);
std::string PostRequest(std::string_view path, std::uint16_t port, const nlohmann::json& body);

}  // namespace bench
