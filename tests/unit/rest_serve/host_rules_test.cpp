#include "serve/host_rules.h"

#include <gtest/gtest.h>

namespace zuva::serve {
namespace {

HostRules Rules(std::vector<std::string> hosts, std::vector<std::string> origins = {}) {
  Config config;
  config.listen = {{"::1", 8080}, {"0.0.0.0", 8080}};
  config.allowedHosts = std::move(hosts);
  config.allowedOrigins = std::move(origins);
  return HostRules{config};
}

TEST(HostRules, KnowListenersTheConnectionLocalhostAndAllowedNames) {
  const auto rules = Rules({"car.local"});
  const auto local = boost::asio::ip::make_address("::ffff:192.168.1.5");
  const auto expect = [&](const HostRules& asked, HostKind kind, std::initializer_list<const char*> hosts) {
    for (const auto* host : hosts) EXPECT_EQ(asked.KindOf(host, local), kind) << host;
  };
  expect(rules, HostKind::kOwn,
         {"[::1]", "[::1]:8080", "[0:0::1]:99", "localhost", "LocalHost:8080", "192.168.1.5", "car.local:80", "CAR.LOCAL", "car.local:"});
  expect(rules, HostKind::kForeign, {"", "evil.example", "192.168.1.6", "car.local.evil", "localhost.", "127.0.0.1", "a%2fb", "a_b~!"});
  const auto invalid = {":80",    "[::1", "[::1]x", "[car]", "localhost:8x", "localhost:123456", "::1:8080", "a b",
                        "a@b:80", "%zz",  "a%2",    "a/b",   "a\\b",         "\xc3\xa4"};
  expect(rules, HostKind::kInvalid, invalid);
  expect(Rules({"*"}), HostKind::kOwn, {"evil.example"});
  expect(Rules({"*"}), HostKind::kInvalid, invalid);
}

TEST(HostRules, AnOriginIsTheSameInSchemeHostAndPortOrListed) {
  const auto rules = Rules({}, {"https://app.example"});
  EXPECT_TRUE(rules.AllowsOrigin("http://localhost:8080", "localhost:8080"));
  EXPECT_TRUE(rules.AllowsOrigin("http://LOCALHOST", "localhost:80"));
  EXPECT_TRUE(rules.AllowsOrigin("https://APP.example", "localhost:8080"));
  for (const auto* foreign : {"null", "https://localhost:8080", "http://localhost:8081", "http://127.0.0.1:8080", "http://app.example",
                              "http://localhost:8080.evil"}) {
    EXPECT_FALSE(rules.AllowsOrigin(foreign, "localhost:8080")) << foreign;
  }
  Config secure;
  secure.tls.emplace();
  EXPECT_TRUE(HostRules{secure}.AllowsOrigin("https://localhost:443", "localhost"));
  EXPECT_FALSE(HostRules{secure}.AllowsOrigin("http://localhost", "localhost"));
}

}  // namespace
}  // namespace zuva::serve
