#include "tests/support/temp_root.h"
#include "tests/support/wait_for.h"
#include "tests/unit/vehicle/peer.h"
#include "tools/vehicle/vehicle.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace vehicle {
namespace {

namespace wire = xr::com::wire;
using nlohmann::json;

const std::string kCharging = "ChargingManagementCore", kNavigation = "RouteBasedEnergyContents";

/// The vehicle on 127.0.0.2 and a bare client on 127.0.0.1, both on one io_context that runs only while the test waits.
class VehicleServer : public testing::Test {
 protected:
  VehicleServer() {
    vehicle_.Start();
    EXPECT_TRUE(Wait([this] { return peer_.Offer(kCharging) && peer_.Offer(kNavigation); }));
  }

  template <class Condition>
  bool Wait(Condition&& condition, std::chrono::milliseconds deadline = test_support::kPatience) {
    return test_support::WaitFor(
        [&] {
          context_.poll();
          return static_cast<bool>(condition());
        },
        deadline);
  }

  void Command(const json& command) { vehicle_.Command(command.dump()); }
  json Events(std::string_view name) const {
    auto found = json::array();
    std::istringstream lines{out_.str()};
    for (std::string line; std::getline(lines, line);)
      if (auto event = json::parse(line); event["event"] == name) found.push_back(event);
    return found;
  }
  bool Told(std::string_view name, std::string_view member, std::string_view value) const {
    for (const auto& event : Events(name))
      if (event.value(std::string{member}, "") == value) return true;
    return false;
  }

  /// The notifications of a field so far, in words.
  json Notified(const std::string& name) const {
    auto values = json::array();
    for (const auto& message : peer_.received)
      if (message.header.type == wire::Message_type::notification && message.header.method == peer_.Field(name).second->event)
        values.push_back(CodecOf(name, Place{}).toJson(message.payload));
    return values;
  }
  void SubscribeAndWait(const std::string& field) {
    peer_.Subscribe(field);
    ASSERT_TRUE(Wait([&] { return Notified(field).size() == 1; })) << "no present value behind the subscription";
    EXPECT_TRUE(peer_.acks[peer_.Field(field).second->eventgroup]);
  }
  static Bytes Payload(const std::string& field, const json& records) { return CodecOf(field, Place{}).fromJson(records, Place{}); }

  static wire::Deployment OwnDeployment(const test_support::TempRoot& root) { return wire::load_deployment(root.DeploymentPath()); }

  test_support::TempRoot root_;
  std::ostringstream out_;
  Reporter reporter_{out_};
  Scenario scenario_ = ParseScenario(R"({"values": {"views": [{"type": "popup"}], "valueControls": [{"currentValue": 5}]}})");
  boost::asio::io_context context_;
  wire::Deployment deployment_ = OwnDeployment(root_);
  Peer peer_{context_, deployment_};
  Vehicle vehicle_{context_, deployment_, boost::asio::ip::make_address_v4("127.0.0.2"), scenario_, 1, reporter_};
};

TEST_F(VehicleServer, OffersBothServicesAgainAndAgainWithTheirEndpoints) {
  const auto* offer = peer_.Offer(kCharging);
  EXPECT_EQ(offer->ttl, 3U);
  ASSERT_EQ(offer->options.size(), 2U);
  EXPECT_EQ(offer->options[0].endpoint.address.to_string(), "127.0.0.2");
  const auto before = peer_.discovery.size();
  ASSERT_TRUE(Wait([&] { return peer_.discovery.size() > before; })) << "no cyclic offer";
  EXPECT_EQ(peer_.discovery.back().entries.size(), 2U) << "one message offers all";
  for (std::size_t i = 0; i < peer_.discovery.size(); ++i) {
    EXPECT_EQ(peer_.discovery[i].session, i + 1);
    EXPECT_TRUE(peer_.discovery[i].reboot);
  }
}

TEST_F(VehicleServer, AnswersAFindUnlessTheServiceIsWithdrawn) {
  const auto before = peer_.discovery.size();
  peer_.Find(kNavigation);
  ASSERT_TRUE(Wait([&] { return peer_.discovery.size() > before; }, std::chrono::milliseconds{900})) << "no answer before the next cycle";
  EXPECT_EQ(peer_.discovery.back().session, 1) << "a unicast answer counts its own sessions";
  Command({{"stopOffer", kNavigation}});
  ASSERT_TRUE(Wait([&] { return !peer_.Offer(kNavigation); }));
  peer_.Find(kNavigation);
  peer_.Find(kCharging);
  const auto answered = peer_.discovery.size();
  ASSERT_TRUE(Wait([&] { return peer_.discovery.size() > answered; }));
  EXPECT_FALSE(peer_.Offer(kNavigation));
}

TEST_F(VehicleServer, ANewSubscriptionBringsThePresentValueAndARenewalDoesNot) {
  SubscribeAndWait("views");
  EXPECT_EQ(Notified("views")[0], json::parse(R"([{"type": "popup"}])"));
  peer_.Subscribe("views");
  ASSERT_TRUE(Wait([&] { return Told("renewed", "field", "views"); }));
  Command({{"set", {{"views", json::array()}}}});
  ASSERT_TRUE(Wait([&] { return Notified("views").size() >= 2; }));
  EXPECT_EQ(Notified("views")[1], json::array()) << "the second notification is the change, not the renewal's";
}

TEST_F(VehicleServer, ASubscriptionEndsWithItsTimeItsStopAndItsService) {
  peer_.Subscribe("views", 1);
  peer_.Subscribe("notifications");
  peer_.Subscribe("chargingPlugs");
  peer_.Subscribe("notifications", 0);
  ASSERT_TRUE(Wait([&] { return Told("unsubscribed", "reason", "stopped"); }));
  ASSERT_TRUE(Wait([&] { return Told("unsubscribed", "reason", "expired"); }));
  Command({{"stopOffer", true}});
  EXPECT_TRUE(Told("unsubscribed", "reason", "withdrawn"));
  EXPECT_EQ(Events("unsubscribed").size(), 3U);
}

TEST_F(VehicleServer, RefusesASubscriptionWithoutItsConnectionAndOneThatItIsToldToRefuse) {
  Command({{"fault", {{"views", {{"subscribe", "nack"}}}}}});
  peer_.Subscribe("views");
  peer_.Subscribe("valueControls");
  ASSERT_TRUE(Wait([&] { return peer_.acks.size() == 2; }));
  EXPECT_THAT(peer_.acks, testing::Each(testing::Pair(testing::_, false)));
  Command({{"fault", "none"}});
  SubscribeAndWait("views");
}

TEST_F(VehicleServer, ReliableFieldsComeOverTheConnectionAndEndWithIt) {
  peer_.Connect(kCharging);
  SubscribeAndWait("valueControls");
  const auto payload = Payload("valueControls", {{{"currentValue", 9}}});
  peer_.Request("valueControls", &payload);
  ASSERT_TRUE(Wait([&] { return Notified("valueControls").size() == 2; }));
  Command({{"breakTcp", true}});
  EXPECT_TRUE(Told("unsubscribed", "reason", "disconnected"));
}

TEST_F(VehicleServer, ASetIsAnsweredWithTheValueSetAndTellsTheMergedField) {
  SubscribeAndWait("views");
  const auto payload = Payload("views", {{{"type", "popup"}, {"visibility", "newRequest"}}});
  peer_.Request("views", &payload);
  ASSERT_TRUE(Wait([&] { return Notified("views").size() == 2; }));
  const auto& answer = peer_.received[1];
  EXPECT_EQ(answer.header.type, wire::Message_type::response);
  EXPECT_EQ(answer.payload, payload);
  EXPECT_EQ(Events("set")[0]["value"], json::parse(R"([{"type": "popup", "visibility": "newRequest"}])"));
  peer_.Request("views");
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 4; }));
  EXPECT_EQ(peer_.received[3].payload, payload) << "a get gives the value held";
}

TEST_F(VehicleServer, ARepetitionTellsEachNumberInOrderAtItsPace) {
  SubscribeAndWait("batteryPreconditioningEnergies");
  const auto start = std::chrono::steady_clock::now();
  const json record{{"type", "batteryPreconditioningEnergy1"}};
  Command({{"repeat",
            {{"batteryPreconditioningEnergies", {{"record", record}, {"counter", "firstStop"}, {"times", 200}, {"perSecond", 1000}}}}}});
  ASSERT_TRUE(Wait([&] { return Notified("batteryPreconditioningEnergies").size() == 201; }));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{199});
  const auto notified = Notified("batteryPreconditioningEnergies");
  for (std::size_t i = 1; i <= 200; ++i) EXPECT_EQ(notified[i][0]["firstStop"], i);
  EXPECT_TRUE(Told("repeated", "field", "batteryPreconditioningEnergies"));
}

TEST_F(VehicleServer, FaultsDecideTheAnswersUntilTheyAreEnded) {
  const auto payload = Payload("views", {{{"type", "bcamScreen"}}});
  Command({{"fault", {{"views", {{"get", {{"error", 32}, {"delay", 0.01}}}, {"set", "silent"}}}}}});
  peer_.Request("views", &payload);
  peer_.Request("views");
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 1; }));
  EXPECT_EQ(peer_.received[0].header.type, wire::Message_type::error);
  EXPECT_EQ(peer_.received[0].header.code, 32);
  Command({{"fault", {{"views", {{"get", {{"payload", "ff"}}}}}}}});
  peer_.Request("views");
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 2; }));
  EXPECT_EQ(peer_.received[1].payload, Bytes{0xFF});
  Command({{"fault", "none"}});
  peer_.Request("views");
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 3; }));
  EXPECT_EQ(peer_.received[2].payload, Payload("views", {{{"type", "popup"}}})) << "a set that was not answered changed the value";
}

TEST_F(VehicleServer, WrongRequestsAndCommandsAreToldAndChangeNothing) {
  const Bytes malformed{0xFF, 0xFF, 0xFF, 0xFF};
  peer_.Request("views", &malformed);
  const auto unsettable = Payload("notifications", json::array());
  peer_.Request("notifications", &unsettable);
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 2; }));
  EXPECT_EQ(peer_.received[0].header.code, 0x09) << "malformed message";
  EXPECT_EQ(peer_.received[1].header.code, 0x03) << "unknown method";
  vehicle_.Command("{");
  vehicle_.Command(R"({"set": {"views": [{"type": "pop"}]}})");
  EXPECT_EQ(Events("refused").size(), 3U);
  peer_.Request("views");
  ASSERT_TRUE(Wait([&] { return peer_.received.size() == 3; }));
  EXPECT_EQ(peer_.received[2].payload, Payload("views", {{{"type", "popup"}}}));
}

}  // namespace
}  // namespace vehicle
