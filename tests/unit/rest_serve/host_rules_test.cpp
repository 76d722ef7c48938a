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
  for (const auto* good :
       {"[::1]", "[::1]:8080", "[0:0::1]:99", "localhost", "LocalHost:8080", "192.168.1.5", "car.local:80", "CAR.LOCAL", "car.local:"}) {
    EXPECT_TRUE(rules.AllowsHost(good, local)) << good;
  }
  for (const auto* bad : {"", ":80", "evil.example", "192.168.1.6", "car.local.evil", "localhost.", "[::1", "[::1]x", "localhost:8x",
                          "localhost:123456", "::1:8080", "127.0.0.1"}) {
    EXPECT_FALSE(rules.AllowsHost(bad, local)) << bad;
  }
  EXPECT_TRUE(Rules({"*"}).AllowsHost("evil.example", local));
  EXPECT_FALSE(Rules({"*"}).AllowsHost("[", local));
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
}

}  // namespace
}  // namespace zuva::serve
