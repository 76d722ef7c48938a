#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include "serve/config.h"
#include "serve/name_lookup.h"
#include "serve/registry_client.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using boost::asio::ip::tcp;
using nlohmann::json;
using test::ServedTree;
using test::WaitFor;

/// A registry that notes what it is told, and answers each request with a text, or with nothing at all.
class Registry {
 public:
  explicit Registry(std::string answer) : answer_{std::move(answer)}, thread_{[this] { Run(); }} {}
  ~Registry() {
    ended_ = true;
    boost::system::error_code ignored;
    tcp::socket{context_}.connect(acceptor_.local_endpoint(), ignored);  // wakes the thread
    thread_.join();
  }
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  std::string Url() const { return "http://localhost:" + std::to_string(acceptor_.local_endpoint().port()) + "/services/"; }
  bool WaitForRequests(std::size_t count) {
    return WaitFor([&] { return Requests().size() >= count; });
  }
  std::vector<std::string> Requests() const {
    const std::lock_guard lock{mutex_};
    return requests_;
  }

 private:
  void Run() {
    for (std::vector<tcp::socket> kept; !ended_;) {
      tcp::socket socket{context_};
      acceptor_.accept(socket);
      std::string text;
      boost::system::error_code error;
      boost::asio::read_until(socket, boost::asio::dynamic_buffer(text), "\r\n\r\n", error);
      const auto length = text.find("Content-Length: ");
      if (length != std::string::npos) {
        const auto whole = text.find("\r\n\r\n") + 4 + std::stoul(text.substr(length + 16));
        if (whole > text.size()) {
          boost::asio::read(socket, boost::asio::dynamic_buffer(text), boost::asio::transfer_exactly(whole - text.size()), error);
        }
      }
      if (text.empty()) continue;
      {
        const std::lock_guard lock{mutex_};
        requests_.push_back(text);
      }
      boost::asio::write(socket, boost::asio::buffer(answer_), error);
      if (answer_.empty()) kept.push_back(std::move(socket));  // open and mute
    }
  }

  const std::string answer_;
  boost::asio::io_context context_;
  tcp::acceptor acceptor_{context_, tcp::endpoint{boost::asio::ip::address_v4::loopback(), 0}};
  std::atomic<bool> ended_{false};
  mutable std::mutex mutex_;  // guards requests_
  std::vector<std::string> requests_;
  std::thread thread_;
};

json WithRegistry(const Registry& registry) {
  return {{"registry", {{"url", registry.Url()}}}};
}

json BodyOf(const std::string& request) {
  return json::parse(request.substr(request.find("\r\n\r\n") + 4));
}

TEST(Registry, IsToldOfServicesAsTheyComeAndGo) {
  Registry registry{"HTTP/1.1 201 Created\r\nContent-Length: 0\r\n\r\n"};
  ServedTree tree{WithRegistry(registry)};
  const auto service = tree.server->GetServices()[0];
  ASSERT_TRUE(registry.WaitForRequests(1)) << "the start announces";
  const auto port = std::to_string(tree.port);
  EXPECT_TRUE(registry.Requests()[0].starts_with("PUT /services/S HTTP/1.1\r\n")) << registry.Requests()[0];
  EXPECT_EQ(BodyOf(registry.Requests()[0])["uris"], json::array({"http://127.0.0.1:" + port + "/S"}));

  service->Deregister();
  ASSERT_TRUE(registry.WaitForRequests(2));
  EXPECT_TRUE(registry.Requests()[1].starts_with("DELETE /services/S HTTP/1.1\r\n")) << registry.Requests()[1];

  ServerService::UriList uris{ara::rest::StdAllocator<ara::rest::Uri>{ara::rest::GetDefaultAllocator()}};
  uris.push_back(ara::rest::Uri::Builder{"http://[::1]/", ara::rest::GetDefaultAllocator()}.ToUri());
  uris.push_back(ara::rest::Uri::Builder{"http://example.org:99", ara::rest::GetDefaultAllocator()}.ToUri());
  service->AddVersion("0.10.1");
  service->Register(uris);
  ASSERT_TRUE(registry.WaitForRequests(3));
  EXPECT_EQ(BodyOf(registry.Requests()[2]), (json{{"name", "S"},
                                                  {"id", service->GetUuid().ToString()},
                                                  {"uris", {"http://[::1]:" + port + "/S", "http://example.org:99/S"}},
                                                  {"versions", {"0.10.1"}},
                                                  {"description", ""}}));
  tree.server->Stop(true);
  ASSERT_TRUE(registry.WaitForRequests(4));
  EXPECT_TRUE(registry.Requests()[3].starts_with("DELETE "));
  EXPECT_EQ(service->Register(uris), service);
  service->Deregister();
  EXPECT_EQ(registry.Requests().size(), 4U) << "too late for the registry";
  EXPECT_FALSE(tree.Logged("The registry did not take"));
}

// A resolver that hangs, until the test ends it.
class HangingNames : public testing::Test {
 protected:
  using Clock = NameLookup::Clock;

  test::Gate gate;
  std::atomic<unsigned> searches{0};
  NameLookup names{[this](const std::string&, std::uint16_t port) {
    ++searches;
    gate.Pass();
    return NameLookup::Endpoints{{boost::asio::ip::address_v4::loopback(), port}};
  }};
};

TEST_F(HangingNames, AreSearchedOnceAtATimeAndEachCallerLeavesAtHisOwnDeadline) {
  for (int i = 0; i < 3; ++i) EXPECT_THROW(names.Find("slow", 80, Clock::now() + std::chrono::milliseconds{20}), std::runtime_error);
  EXPECT_EQ(searches, 1U);
  gate.Open();
  EXPECT_EQ(names.Find("slow", 81, Clock::now() + test_support::kPatience).at(0).port(), 81);
  EXPECT_EQ(searches, 2U);
}

TEST_F(HangingNames, CostAStopTwoSecondsInAll) {
  const ara::log::testing::Capture capture;
  RegistryClient client{{.authority = "slow", .host = "slow", .port = 80, .path = ""}, names};
  client.BeginStop();
  const auto begin = Clock::now();
  client.Withdraw("S");
  client.Withdraw("T");
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds{3});
  EXPECT_THAT(capture.Lines(), testing::ElementsAre(testing::HasSubstr("its name is not resolved in time"),
                                                    testing::HasSubstr("its name is not resolved in time")));
  gate.Open();
}

struct Trouble {
  const char* name;
  const char* answer;
  const char* reason;
};

class RegistryTroubles : public testing::TestWithParam<Trouble> {};

TEST_P(RegistryTroubles, AreAWarningAndHoldNothingUp) {
  Registry registry{GetParam().answer};
  ServedTree tree{WithRegistry(registry)};
  EXPECT_EQ(tree.Http().Get("/S/others").status, 200U);
  const auto warning = [&] {
    for (const auto& line : tree.capture.Lines())
      if (line.find("registry did not take PUT /services/S") != std::string::npos) return line;
    return std::string{};
  };
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(WaitFor([&] { return !warning().empty(); }));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{2500});
  EXPECT_THAT(warning(), testing::HasSubstr(GetParam().reason));
  EXPECT_TRUE(tree.server->GetServices()[0]->IsAnnounced());
}

INSTANTIATE_TEST_SUITE_P(All, RegistryTroubles,
                         testing::Values(Trouble{"Mute", "", "no answer in time"},
                                         Trouble{"Refusing", "HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n", "it answers 500"},
                                         Trouble{"Redirecting", "HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n",
                                                 "it answers 302"},
                                         Trouble{"Endless", "HTTP/1.1 200 OK\r\nContent-Length: 70000\r\n\r\n", "body limit"},
                                         Trouble{"NoHttp", "hello\r\n\r\n", "bad"}),
                         [](const auto& trouble) { return trouble.param.name; });

}  // namespace
}  // namespace zuva::serve
