#include "tests/support/raw_socket.h"
#include "tests/system/system_test.h"

#include <fstream>
#include <random>
#include <regex>

namespace system_test {
namespace {

using test_support::RawSocket;

std::string Hex(const std::vector<unsigned char>& bytes) {
  std::string text;
  for (const unsigned char byte : bytes) text += {"0123456789abcdef"[byte >> 4U], "0123456789abcdef"[byte & 15U]};
  return text;
}

/// Bytes from both sides that no good participant sends, while the road goes on working.
class Hostile : public SystemTest {
 protected:
  void SetUp() override {
    StartBoth();
    ws_.emplace(bridge_.Ws());
    ws_->Subscribe("/ChargingManagementCore");
  }

  void ExpectTheRoadToWork() {
    ++marker_;
    Set("batteryPreconditioningEnergies", {{{"type", "batteryPreconditioningEnergy1"}, {"firstStop", marker_}}});
    EXPECT_TRUE(WaitForEvent(*ws_, "changed", "/ChargingManagementCore/batteryPreconditioningEnergies", {{"firstStop", marker_}}));
    Set("valueIndications", {{{"type", "chargingProcessInformationCurrentSoc"}, {"currentValue", marker_}}});
    EXPECT_TRUE(WaitForEvent(*ws_, "changed", "/ChargingManagementCore/valueIndications", {{"currentValue", marker_}}));
    EXPECT_EQ(Http().Get("/").status, 200U);
  }

  std::optional<test_support::WsClient> ws_;
  int marker_ = 0;
};

TEST_F(Hostile, PayloadsOfTheVehicle) {
  const auto before = vehicle_->EventCount();
  for (const char* payload :
       {"", "00", "ff ff ff ff", "00 00 00 04 ff ff ff ff", "00 00 00 04 00 00 00 08", "00 00 00 08 00 00 00 04 20 00 00 00",
        "00 00 00 0a 00 00 00 06 70 02 ff ff ff ff", "00 00 00 0a 00 00 00 06 20 00 00 00 ff ff 00", "7f ff ff ff 7f ff ff ff 7f ff ff ff"})
    for (const char* field : {"views", "switchControls", "chargingProcessInformation", "targetSocChargings"})
      vehicle_->Command({{"payload", {{field, payload}}}});
  std::mt19937 random{20241124};
  for (int i = 0; i < 300; ++i) {
    std::vector<unsigned char> bytes(random() % 64);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random() % 4 ? random() % 8 : random());
    vehicle_->Command({{"payload", {{i % 2 ? "views" : "valueControls", Hex(bytes)}}}});
  }
  ExpectTheRoadToWork();
  Set("views", Popup("newRequest"));
  EXPECT_TRUE(WaitForElement("views", "popup"));
  EXPECT_FALSE(vehicle_->WaitForEvent("refused", "", before, 0ms)) << "the vehicle could not say it";
}

TEST_F(Hostile, MessagesAndDiscoveryOfTheVehicle) {
  const char* discovery[] = {
      "", "ff", "ff ff 81 00 00 00 00 08 00 00 00 01 01 01 02 00",
      // Entries longer than the message, an option that reaches beyond it, an offer that refers to no option.
      "ff ff 81 00 00 00 00 14 00 00 00 02 01 01 02 00 c0 00 00 00 ff ff ff f0 00 00 00 00",
      "ff ff 81 00 00 00 00 18 00 00 00 03 01 01 02 00 c0 00 00 00 00 00 00 00 00 00 00 04 ff ff 04 00",
      ("ff ff 81 00 00 00 00 24 00 00 00 04 01 01 02 00 c0 00 00 00 00 00 00 10 01 07 00 10 63 10 00 01 01 00 00 03 00 00 00 00 "
       "00 00 00 00")};
  for (const char* bytes : discovery) vehicle_->Command({{"discovery", bytes}});
  const char* messages[] = {"00",
                            "63 10 80 22 ff ff ff ff 00 00 00 01 01 01 02 00",
                            "63 10 80 22 00 00 00 00 00 00 00 01 01 01 02 00",
                            "63 10 80 22 00 00 00 08 00 00 00 01 01 01 22 00",
                            "63 10 80 ff 00 00 00 08 00 00 00 01 01 01 02 00",
                            "63 10 00 52 00 00 00 08 00 00 00 01 01 01 80 00"};
  for (const char* bytes : messages) vehicle_->Command({{"message", {{"views", bytes}}}});
  ExpectTheRoadToWork();
  for (const char* bytes : messages) {
    // What the stream cannot be followed after ends the connection, and the bridge makes a new one.
    vehicle_->Command({{"message", {{"valueControls", bytes}}}});
  }
  const auto before = vehicle_->EventCount();
  vehicle_->Command({{"breakTcp", true}});
  ASSERT_TRUE(vehicle_->WaitForEvent("subscribed", "valueIndications", before));
  ExpectTheRoadToWork();
  EXPECT_EQ(AnnouncedServices(), 2U);
}

TEST_F(Hostile, RequestsAndFramesOfClients) {
  const auto element = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(element);
  const std::string nested(30'000, '['), host = " HTTP/1.1\r\nHost: localhost\r\n", typed = "Content-Type: application/json\r\n",
                                         post = "POST " + element->value("uri", "") + host + typed;
  const std::pair<std::string, const char*> requests[] = {
      {std::string{"\x00\x01\x02\r\n\r\n", 7}, "400"},
      {"GET /%00%0a%1b%5b31m" + host + "\r\n", "404"},
      {"GET /" + host + "X: " + std::string(100'000, 'x') + "\r\n\r\n", "431"},
      {post + "Content-Length: 99999999999999999999\r\n\r\n", "400"},
      {post + "Transfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\n", "413"},
      {post + "Content-Length: 30000\r\n\r\n" + nested, "400"},
      {"POST /ChargingManagementCore" + host + typed + "Content-Length: 30000\r\n\r\n" + nested, "405"}};
  for (const auto& [request, status] : requests) {
    RawSocket socket{bridge_.Port()};
    socket.Send(request);
    EXPECT_EQ(socket.ReadUntil("\r\n").substr(9, 3), status) << request.substr(0, 80);
  }
  auto talker = bridge_.Ws();
  for (const std::string& text : {std::string{"{"}, nested, std::string{"null"}, std::string{R"({"action":"\u0000\n"})"},
                                  std::string{R"({"action":"subscribe","path":"/\u001b[2J","requestId":[]})"}}) {
    talker.SendText(text);
    const auto answer = talker.Receive();
    ASSERT_TRUE(answer) << text.substr(0, 40);
    EXPECT_TRUE(answer->contains("error")) << *answer;
  }
  talker.SendBinary(std::string{"\x00\xff", 2});
  EXPECT_EQ(talker.WaitForClose(), 1003U);
  ExpectTheRoadToWork();
}

TEST_F(Hostile, TheLogNeverHoldsRawControlCharacters) {
  Set("chargingProcessInformation",
      {{{"type", "chargingProcessInformation"}, {"evseid", "\x1b[31mDE*1\r\n2026-01-01T00:00:00.000000Z FATAL TROV TROV forged\x7f\x01"}}});
  ASSERT_TRUE(WaitFor([this] { return Elements("chargingProcessInformation")[0].contains("evseid"); }));
  const auto element = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(element);
  Http().Post((*element)["uri"].get<std::string>(), R"({"specialState":"\u001b[2J\n\u0007"})");
  RawSocket{bridge_.Port()}.Send("GET /\x1b[31m HTTP/1.1\r\nHost: \x07\x1b[0m\r\n\r\n");
  ExpectTheRoadToWork();
  ASSERT_EQ(bridge_.Stop(), test_support::ExitStatus{});

  std::ifstream file{root_.LogPath(), std::ios::binary};
  const std::regex wholeLine{R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z (FATAL|ERROR|WARN|INFO|DEBUG|VERBOSE) \S+ \S+ .*)"};
  bool mentionsTheText = false;
  for (std::string line; std::getline(file, line);) {
    EXPECT_TRUE(std::regex_match(line.substr(0, 200), wholeLine)) << line;
    EXPECT_TRUE(std::none_of(line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; })) << line;
    mentionsTheText =
        mentionsTheText || line.find(R"(\x1B[31mDE*1)") != std::string::npos || line.find(R"(\x1b[31mDE*1)") != std::string::npos;
    EXPECT_FALSE(line.starts_with("2026-01-01T")) << "a line that nobody logged: " << line;
  }
  EXPECT_TRUE(mentionsTheText) << "the text was meant to be logged";
}

}  // namespace
}  // namespace system_test
