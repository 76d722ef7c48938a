#include "tests/system/system_test.h"

#include <filesystem>

namespace system_test {
namespace {

/// A file that the program cannot use, and what it says of it.
struct WrongFile {
  const char* name;
  bool isDeployment;
  const char* text;  ///< nullptr: there is none
  const char* reason;
};

void PrintTo(const WrongFile& row, std::ostream* out) {
  *out << row.name;
}

class WrongFiles : public SystemTest, public testing::WithParamInterface<WrongFile> {};

TEST_P(WrongFiles, EndTheProgramAtOnceWithTheFileAndTheReason) {
  const auto& row = GetParam();
  const auto path = row.isDeployment ? root_.DeploymentPath() : root_.RestConfigPath();
  if (!row.text) {
    std::filesystem::remove(path);
  } else if (row.isDeployment) {
    root_.WriteDeployment(row.text);
  } else {
    root_.WriteRestConfig(row.text);
  }
  const auto start = std::chrono::steady_clock::now();
  bridge_.Start();
  EXPECT_EQ(bridge_.Program().WaitForEnd(), (test_support::ExitStatus{0, SIGABRT}));
  EXPECT_LT(SecondsSince(start), 1.0);

  std::vector<std::string> telling, fatal;
  for (const auto& line : bridge_.Log().Lines()) {
    if (line.level == "ERROR" && line.context == (row.isDeployment ? "XRCM" : "ZUVA")) telling.push_back(line.text);
    if (line.level == "FATAL") fatal.push_back(line.text);
  }
  EXPECT_THAT(telling, testing::ElementsAre(
                           testing::AllOf(testing::HasSubstr(path.filename().string() + (row.isDeployment ? ": " : " is not usable: ")),
                                          testing::HasSubstr(row.reason))));
  EXPECT_EQ(fatal.size(), 1U) << json(fatal);
  EXPECT_EQ(bridge_.Log().Lines().back().level, "FATAL");
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongFiles,
    testing::Values(
        WrongFile{"NoConfiguration", false, nullptr, "cannot be opened: No such file or directory"},
        WrongFile{"ConfigurationIsNoJson", false, R"({"listen": [)", "parse error at line 1, column 13"},
        WrongFile{"UnknownKey", false, R"({"listen": [{"address": "::1", "port": 0}], "limits": {"connexions": 9}})",
                  "limits.connexions: unknown key"},
        WrongFile{"BadPort", false, R"({"listen": [{"address": "127.0.0.1", "port": 65536}]})",
                  "listen[0].port: must be a whole number from 0 to 65535"},
        WrongFile{"NoCertificate", false,
                  R"({"listen": [{"address": "127.0.0.1", "port": 0}], "tls": {"certificate": "/no/cert.pem", "key": "/no/key.pem"}})",
                  "tls.certificate: cannot use /no/cert.pem: No such file or directory"},
        WrongFile{"DeploymentIsNoJson", true, "services", "parse error at line 1, column 1"},
        WrongFile{"BadAddress", true, R"({"unicast": "1.2.3"})", "unicast: must be an IPv4 address"},
        WrongFile{"UnknownDeploymentKey", true, R"({"serviceDiscovery": {"ports": 1}})", "serviceDiscovery.ports: unknown key"}),
    [](const auto& row) { return row.param.name; });

TEST_F(WrongFiles, APortThatIsTakenLeavesTheProgramUpAndSupervised) {
  test_support::TempRoot otherRoot;
  test_support::Bridge other{otherRoot};
  other.Start();
  auto config = root_.DefaultRestConfig();
  config["listen"][0]["port"] = other.Port();
  root_.WriteRestConfig(config.dump());
  bridge_.Start();
  ASSERT_TRUE(
      bridge_.Log().WaitForLine("Failed to start server:Cannot listen on any address: 127.0.0.1 port " + std::to_string(other.Port())));
  const auto alive = bridge_.Manager().Count("WATCHDOG=1");
  EXPECT_TRUE(WaitFor([&] { return bridge_.Manager().Count("WATCHDOG=1") > alive + 1; }));
  EXPECT_EQ(bridge_.Stop(), test_support::ExitStatus{});
  EXPECT_EQ(other.Stop(), test_support::ExitStatus{});
}

}  // namespace
}  // namespace system_test
