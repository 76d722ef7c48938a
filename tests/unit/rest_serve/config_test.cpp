#include "serve/config.h"

#include <array>

#include <gtest/gtest.h>

#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test::StagingRoot;

std::string FaultOf(std::string_view text) {
  try {
    ParseConfig(text);
    return "";
  } catch (const ConfigError& e) {
    return e.what();
  }
}

std::string WithListen(const std::string& more) {
  return R"({"listen":[{"address":"::1","port":8080}],)" + more + "}";
}

TEST(Config, AbsentKeysHaveTheirDefaultsAndGivenOnesCount) {
  const auto numbers = [](const Config& config) {
    const auto& limits = config.limits;
    return std::array{config.requestThreads, limits.connections,           limits.bodyBytes,
                      limits.headerBytes,    limits.idleSeconds,           limits.requestSeconds,
                      limits.queuedRequests, limits.pendingBytesPerClient, limits.subscriptionsPerClient};
  };
  using Numbers = std::array<std::size_t, 9>;
  for (const auto* more : {R"("allowedHosts":[])", R"("limits":{})"})
    EXPECT_EQ(numbers(ParseConfig(WithListen(more))), (Numbers{10, 1024, 65536, 8192, 60, 10, 64, 1048576, 256}));
  const auto config = ParseConfig(WithListen(
      R"("requestThreads":3,"allowedHosts":["Car.Local"],"limits":{"connections":1,"bodyBytes":2,"headerBytes":64,"idleSeconds":4,)"
      R"("requestSeconds":5,"queuedRequests":6,"pendingBytesPerClient":7,"subscriptionsPerClient":8})"));
  EXPECT_EQ(config.listen.at(0).port, 8080);
  EXPECT_EQ(config.allowedHosts, std::vector<std::string>{"car.local"});
  EXPECT_EQ(numbers(config), (Numbers{3, 1, 2, 64, 4, 5, 6, 7, 8}));
}

struct BadConfig {
  std::string name, text, named;
};

class BadConfigs : public testing::TestWithParam<BadConfig> {};

TEST_P(BadConfigs, AreRefusedByName) {
  const auto fault = FaultOf(GetParam().text);
  EXPECT_FALSE(fault.empty());
  EXPECT_NE(fault.find(GetParam().named), std::string::npos) << fault;
}

INSTANTIATE_TEST_SUITE_P(
    Config, BadConfigs,
    testing::Values(BadConfig{"NoJson", "{", "parse"}, BadConfig{"NoListen", "{}", "listen"},
                    BadConfig{"EmptyListen", R"({"listen":[]})", "listen"},
                    BadConfig{"UnknownKey", WithListen(R"("lissten":1)"), "lissten"},
                    BadConfig{"RepeatedKey", WithListen(R"("requestThreads":1,"requestThreads":2)"), "requestThreads"},
                    BadConfig{"WrongKind", WithListen(R"("requestThreads":"four")"), "requestThreads"},
                    BadConfig{"Zero", WithListen(R"("limits":{"connections":0})"), "limits.connections"},
                    BadConfig{"Negative", WithListen(R"("limits":{"idleSeconds":-1})"), "limits.idleSeconds"},
                    BadConfig{"UnknownLimit", WithListen(R"("limits":{"bodyBites":1})"), "limits.bodyBites"},
                    BadConfig{"NoAddress", R"({"listen":[{"address":"localhost","port":1}]})", "listen[0].address"},
                    BadConfig{"NoPort", R"({"listen":[{"address":"::1"}]})", "listen[0].port"},
                    BadConfig{"NoOrigin", WithListen(R"("allowedOrigins":["car.local"])"), "allowedOrigins[0]"},
                    BadConfig{"TlsWithoutFiles", WithListen(R"("tls":{})"), "tls.certificate"},
                    BadConfig{"TlsWithRelativeKey", WithListen(R"("tls":{"certificate":"/c","key":"k"})"), "tls.key"},
                    BadConfig{"NoTokens", WithListen(R"("tokens":[])"), "tokens"},
                    BadConfig{"TokenOfBlanks", WithListen(R"("tokens":[{"token":"a b"}])"), "tokens[0].token"},
                    BadConfig{"TokenTwice", WithListen(R"("tokens":[{"token":"a"},{"token":"a"}])"), "tokens[1]"},
                    BadConfig{"OpenTokens", R"({"listen":[{"address":"0.0.0.0","port":1}],"tokens":[{"token":"a"}]})", "tls"},
                    BadConfig{"RelativeDocumentRoot", WithListen(R"("documentRoot":"www")"), "documentRoot"},
                    BadConfig{"RegistryWithoutUrl", WithListen(R"("registry":{})"), "registry.url"},
                    BadConfig{"RegistryOfAnotherScheme", WithListen(R"("registry":{"url":"ftp://a/"})"), "registry.url"}),
    [](const auto& parameter) { return parameter.param.name; });

TEST(Config, AWrongFileIsOneErrorLineWithFileAndReasonAndNoServer) {
  const StagingRoot root;
  for (const bool exists : {false, true}) {
    if (exists) root.Write(WithListen(R"("lissten":1)"));
    const ara::log::testing::Capture capture;
    EXPECT_ANY_THROW(Server("test", StagingRoot::kConfig));
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].level, ara::log::LogLevel::kError);
    EXPECT_NE(records[0].text.find(StagingRoot::kConfig), std::string::npos);
    EXPECT_NE(records[0].text.find(exists ? "lissten" : "No such file"), std::string::npos) << records[0].text;
  }
}

}  // namespace
}  // namespace zuva::serve
