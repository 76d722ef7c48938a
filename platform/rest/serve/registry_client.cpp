#include "serve/registry_client.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include "zuva/logger.h"

namespace zuva::serve {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds kLongest{2};
constexpr std::size_t kMostBytes = 65536;

using Endpoints = NameLookup::Endpoints;

Endpoints Resolved(const RegistryAddress& address, NameLookup& names, Clock::time_point deadline) {
  boost::system::error_code error;
  const auto literal = asio::ip::make_address(address.host, error);
  if (!error) return {{literal, address.port}};
  return names.Find(address.host, address.port, deadline);
}

/// One request and its answer on a connection of its own.
class Attempt {
 public:
  Attempt(http::request<http::string_body> request, const Endpoints& endpoints) : request_{std::move(request)} {
    answer_.header_limit(kMostBytes / 8);
    answer_.body_limit(kMostBytes);
    asio::async_connect(socket_, endpoints, [this](const auto& error, const auto&) {
      if (Goes(error)) Write();
    });
  }

  /// The status of the answer. Throws `std::runtime_error` with the reason if there is none in time.
  unsigned Run(Clock::time_point deadline) {
    context_.run_until(deadline);
    if (error_) throw std::runtime_error{error_.message()};
    if (!answer_.is_done()) throw std::runtime_error{"no answer in time"};
    return answer_.get().result_int();
  }

 private:
  bool Goes(const boost::system::error_code& error) {
    error_ = error;
    return !error;
  }
  void Write() {
    http::async_write(socket_, request_, [this](const auto& error, std::size_t) {
      if (Goes(error)) Read();
    });
  }
  void Read() {
    http::async_read(socket_, buffer_, answer_, [this](const auto& error, std::size_t) { Goes(error); });
  }

  asio::io_context context_{1};
  tcp::socket socket_{context_};
  http::request<http::string_body> request_;
  boost::beast::flat_buffer buffer_{kMostBytes};
  http::response_parser<http::string_body> answer_;
  boost::system::error_code error_;
};

}  // namespace

void RegistryClient::BeginStop() {
  stopBy_ = (Clock::now() + kLongest).time_since_epoch().count();
}

void RegistryClient::Exchange(const char* method, const std::string& service, const std::string& document) const {
  const auto deadline = std::min(Clock::now() + kLongest, Clock::time_point{Clock::duration{stopBy_.load()}});
  const auto target = address_.path + "/" + service;
  try {
    http::request<http::string_body> request{http::string_to_verb(method), target, 11};
    request.set(http::field::host, address_.authority);
    request.set(http::field::connection, "close");
    if (!document.empty()) request.set(http::field::content_type, "application/json");
    request.body() = document;
    request.prepare_payload();
    const auto status = Attempt{std::move(request), Resolved(address_, names_, deadline)}.Run(deadline);
    if (status / 100 != 2) throw std::runtime_error{"it answers " + std::to_string(status)};
  } catch (const std::exception& e) {
    GetLogger().LogWarn() << "The registry did not take " << method << " " << target << " at " << address_.authority << ": " << e;
  }
}

}  // namespace zuva::serve
