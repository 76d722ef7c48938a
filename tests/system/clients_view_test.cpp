#include "tests/system/system_test.h"

#include <fstream>
#include <map>
#include <vector>

namespace system_test {
namespace {

const std::string kControls = "/ChargingManagementCore/valueControls";

/// A control that a composite embeds, as clients ask for it and listen to it while the vehicle changes it.
class ClientsView : public SystemTest {
 protected:
  void SetUp() override {
    const auto file = root_.Path() / "scenario.json";
    std::ofstream{file} << json::object();  // a vehicle that says nothing by itself
    StartVehicle(file.string());
    bridge_.Start();
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
    Say(65, 90);
    control_ = WaitForElement("valueControls", "notificationMarker1notificationSocValue", {{"currentValue", 65}}).value();
    marker_ = WaitForElement("notificationMarkers", "notificationMarker1", {{"notificationSocValue", control_}}).value();
  }
  void Say(int current, int most) {
    Set("valueControls",
        {{{"type", "notificationMarker1notificationSocValue"}, {"currentValue", current}, {"maxValue", most}, {"unitPercent", "percent"}}});
  }

  json control_, marker_;
};

TEST_F(ClientsView, TheTagOfACompositeFollowsWhatItEmbeds) {
  const auto path = marker_["uri"].get<std::string>();
  const auto tag = Http().Get(path).headers.at("etag");
  const auto head = Http().Request("HEAD", path);
  EXPECT_EQ(head.headers.at("etag"), tag);
  EXPECT_TRUE(head.body.empty());
  EXPECT_EQ(Http().Get(path, {{"If-None-Match", tag}}).status, 304U);
  Say(66, 90);
  ASSERT_TRUE(WaitForElement("valueControls", "notificationMarker1notificationSocValue", {{"currentValue", 66}}));
  const auto fresh = Http().Get(path, {{"If-None-Match", tag}});
  EXPECT_EQ(fresh.status, 200U);
  EXPECT_NE(fresh.headers.at("etag"), tag);
  EXPECT_EQ(fresh.Json()["notificationSocValue"]["currentValue"], 66);
}

TEST_F(ClientsView, OneUpdateIsOneWholeEventToWhoeverListens) {
  const auto element = control_["uri"].get<std::string>();
  const std::string query = kControls + "?maxValue=80";
  auto ws = bridge_.Ws();
  std::map<std::string, std::string> paths;  // by subscription
  for (const auto& path : {element, kControls, query, std::string{"/ChargingManagementCore"}, marker_["uri"].get<std::string>()}) {
    paths[ws.Subscribe(path)["subscriptionId"]] = path;
  }
  // Of two members that change in one record, each subscription hears once; the composite's hears nothing.
  using Events = std::map<std::string, std::string>;
  const auto heard = [&](int current, int most) {
    Say(current, most);
    Events events;
    for (int i = 0; i < 4; ++i) {
      const auto message = ws.Receive();
      if (!message) break;
      EXPECT_EQ(message->at("path"), element);
      if (message->contains("data")) {
        EXPECT_EQ(message->at("data"), Http().Get(element).Json()) << *message;
      }
      events[paths[message->at("subscriptionId")]] += message->at("event");
    }
    return events;
  };
  EXPECT_EQ(heard(66, 80),
            (Events{{element, "changed"}, {kControls, "changed"}, {query, "added"}, {"/ChargingManagementCore", "changed"}}));
  EXPECT_EQ(heard(67, 80),
            (Events{{element, "changed"}, {kControls, "changed"}, {query, "changed"}, {"/ChargingManagementCore", "changed"}}));
  EXPECT_EQ(heard(68, 95),
            (Events{{element, "changed"}, {kControls, "changed"}, {query, "removed"}, {"/ChargingManagementCore", "changed"}}));
}

}  // namespace
}  // namespace system_test
