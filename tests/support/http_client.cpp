#include "tests/support/http_client.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <stdexcept>

namespace test_support {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using tcp = net::ip::tcp;

namespace {

std::string Lower(std::string_view text) {
  std::string lower{text};
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

HttpResponse Converted(http::response<http::string_body>& from) {
  HttpResponse response{from.result_int(), {}, std::move(from.body())};
  for (const auto& field : from) response.headers[Lower({field.name_string().data(), field.name_string().size()})] = field.value();
  return response;
}

}  // namespace

struct HttpClient::Connection {
  Connection(std::string address, std::uint16_t port, std::chrono::milliseconds deadline)
      : host{address}, endpoint{net::ip::make_address(address), port}, patience{deadline} {
    if (endpoint.address().is_v6()) host = "[" + host + "]";
    host += ":" + std::to_string(port);
  }

  // Runs the one operation that `start` begins to its end and gives its error.
  template <class Start>
  beast::error_code Do(beast::tcp_stream& stream, Start&& start) {
    beast::error_code result;
    stream.expires_after(patience);
    start([&result](beast::error_code error, auto&&...) { result = error; });
    context.restart();
    context.run();
    return result;
  }

  beast::error_code Open(beast::tcp_stream& stream) {
    return Do(stream, [&](auto done) { stream.async_connect(endpoint, done); });
  }

  beast::error_code Exchange(const http::request<http::string_body>& request, http::response<http::string_body>& response) {
    if (!kept) {
      kept.emplace(context);
      if (const auto error = Open(*kept)) return error;
    }
    if (const auto error = Do(*kept, [&](auto done) { http::async_write(*kept, request, done); })) return error;
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    if (request.method() == http::verb::head) parser.skip(true);
    if (const auto error = Do(*kept, [&](auto done) { http::async_read(*kept, buffer, parser, done); })) return error;
    response = parser.release();
    if (!response.keep_alive()) Close();
    return {};
  }

  void Close() {
    kept.reset();
    buffer.clear();
  }

  std::string host;
  tcp::endpoint endpoint;
  std::chrono::milliseconds patience;
  net::io_context context;
  std::optional<beast::tcp_stream> kept;
  beast::flat_buffer buffer;
};

HttpClient::HttpClient(std::string address, std::uint16_t port, std::chrono::milliseconds deadline)
    : connection_{std::make_unique<Connection>(std::move(address), port, deadline)} {}
HttpClient::~HttpClient() = default;
HttpClient::HttpClient(HttpClient&&) noexcept = default;
HttpClient& HttpClient::operator=(HttpClient&&) noexcept = default;

HttpResponse HttpClient::Get(std::string_view target, const Headers& headers) {
  return Request("GET", target, {}, headers);
}

HttpResponse HttpClient::Post(std::string_view target, std::string_view body, const Headers& headers) {
  return Request("POST", target, body, headers);
}

HttpResponse HttpClient::Request(std::string_view method, std::string_view target, std::string_view body, const Headers& headers) {
  http::request<http::string_body> request;
  request.method_string({method.data(), method.size()});
  request.target({target.data(), target.size()});
  request.set(http::field::host, connection_->host);
  if (method == "POST") request.set(http::field::content_type, "application/json");
  for (const auto& [name, value] : headers) request.set(name, value);
  request.body() = body;
  if (!body.empty() || method == "POST") request.prepare_payload();

  const bool wasOpen = connection_->kept.has_value();
  http::response<http::string_body> response;
  auto error = connection_->Exchange(request, response);
  // The server may have dropped the idle connection meanwhile; a request on a fresh one is not tried twice.
  if (wasOpen && (error == http::error::end_of_stream || error == net::error::connection_reset || error == net::error::broken_pipe)) {
    connection_->Close();
    error = connection_->Exchange(request, response);
  }
  if (error) {
    connection_->Close();
    throw std::runtime_error(std::string{method} + " " + std::string{target} + ": " + error.message());
  }
  return Converted(response);
}

std::string HttpClient::Raw(std::string_view bytes, std::chrono::milliseconds patience) {
  auto& c = *connection_;
  beast::tcp_stream stream{c.context};
  if (const auto error = c.Open(stream)) throw std::runtime_error("connect: " + error.message());
  std::string answer;
  // An error of writing is no end: the server may have answered and closed before it took all.
  c.Do(stream, [&](auto done) { net::async_write(stream, net::buffer(bytes.data(), bytes.size()), done); });
  std::array<char, 65536> chunk;
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;;) {
    std::size_t size = 0;
    beast::error_code error;
    stream.expires_at(end);
    stream.async_read_some(net::buffer(chunk), [&](beast::error_code e, std::size_t n) {
      error = e;
      size = n;
    });
    c.context.restart();
    c.context.run();
    answer.append(chunk.data(), size);
    if (error) return answer;
  }
}

}  // namespace test_support
