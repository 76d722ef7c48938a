#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {

using Headers = std::vector<std::pair<std::string, std::string>>;

struct HttpResponse {
  unsigned status = 0;
  std::map<std::string, std::string> headers;  ///< names in lower case
  std::string body;

  /// The body as JSON; a discarded value if it is none.
  nlohmann::json Json() const { return nlohmann::json::parse(body, nullptr, false); }
};

/// A client of one HTTP server on one kept connection. Each operation ends within the deadline given to the constructor or throws
/// std::runtime_error; a connection that the server has closed is opened again before the next request. For one thread.
class HttpClient {
 public:
  HttpClient(std::string address, std::uint16_t port, std::chrono::milliseconds deadline = std::chrono::seconds{10});
  ~HttpClient();
  HttpClient(HttpClient&&) noexcept;
  HttpClient& operator=(HttpClient&&) noexcept;

  HttpResponse Get(std::string_view target, const Headers& headers = {});
  /// Posts JSON: Content-Type is application/json unless the headers have one.
  HttpResponse Post(std::string_view target, std::string_view body, const Headers& headers = {});
  HttpResponse Request(std::string_view method, std::string_view target, std::string_view body = {}, const Headers& headers = {});

  /// Sends bytes as they are on a connection of their own and gives all that comes back until the server closes or `patience` ends.
  std::string Raw(std::string_view bytes, std::chrono::milliseconds patience = std::chrono::seconds{3});

 private:
  struct Connection;
  std::unique_ptr<Connection> connection_;
};

}  // namespace test_support
