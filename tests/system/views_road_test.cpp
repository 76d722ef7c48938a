#include "tests/system/system_test.h"

namespace system_test {
namespace {

/// The road of a view, from the vehicle to clients and back.
class ViewsRoad : public SystemTest {
 protected:
  void SetUp() override { StartBoth(); }

  /// Has the vehicle ask for the popup, and gives the element.
  json ShowPopup() {
    Set("views", Popup("newRequest"));
    const auto element = WaitForElement("views", "popup", {{"visibility", "newRequest"}});
    EXPECT_TRUE(element) << "the view does not come in";
    return element.value_or(json::object());
  }
  test_support::HttpResponse Post(const json& element, const json& body) { return Http().Post(element.value("uri", "/"), body.dump()); }
};

TEST_F(ViewsRoad, ASubscriberHearsAViewEnterChangeAndLeaveAndComeBackUnderAnotherId) {
  auto ws = bridge_.Ws();
  EXPECT_EQ(ws.Subscribe(kViews)["data"], json::array());
  Set("views", Popup("newRequest"));
  const auto added = WaitForEvent(ws, "added", kViews);
  ASSERT_TRUE(added);
  const auto path = (*added)["path"].get<std::string>();
  EXPECT_EQ(Http().Get(path).Json(), (*added)["data"]);
  EXPECT_EQ((*added)["data"]["content"], "chargingInformationScreen");

  Set("views", Popup("requestedViewVisible"));
  const auto changed = WaitForEvent(ws, "changed", path);
  ASSERT_TRUE(changed);
  EXPECT_EQ((*changed)["data"]["visibility"], "requestedViewVisible");

  Set("views", {{{"type", "popup"}, {"content", "nothing"}}});
  ASSERT_TRUE(WaitForEvent(ws, "removed", path));
  EXPECT_EQ(Http().Get(path).status, 404U);

  Set("views", Popup("newRequest"));
  const auto again = WaitForEvent(ws, "added", kViews);
  ASSERT_TRUE(again);
  EXPECT_NE((*again)["path"], path);
}

TEST_F(ViewsRoad, APostIsAnsweredWithTheNewValueOnceTheVehicleHasTakenIt) {
  const auto view = ShowPopup();
  Fault("views", {{"set", {{"delay", 0.4}}}});
  const auto start = std::chrono::steady_clock::now();
  const auto answer = Post(view, {{"visibility", "requestedViewObstructed"}});
  EXPECT_GE(SecondsSince(start), 0.4) << "answered before the vehicle had";
  EXPECT_EQ(answer.status, 200U);
  EXPECT_EQ(answer.Json()["visibility"], "requestedViewObstructed");
  EXPECT_EQ(answer.Json()["id"], view["id"]);
  const auto set = vehicle_->WaitForEvent("set", "views");
  ASSERT_TRUE(set);
  EXPECT_EQ((*set)["value"], json::parse(R"([{"type": "popup", "visibility": "requestedViewObstructed"}])"));
}

}  // namespace
}  // namespace system_test
