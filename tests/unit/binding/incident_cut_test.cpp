#include "ara/log/testing/capture.h"
#include "binding/incidents/event_incidents.h"
#include "binding/incidents/incident_json.h"
#include "binding/incidents/target.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>

namespace {

using nlohmann::ordered_json;
using xr::com::cpp_binding::log::detail::cut_to;

TEST(IncidentCut, EndsBehindAMemberAtEachLimit) {
  const std::string whole =
      R"({"1_incident":{"1_id":"a \"quoted, {[ \\","4_event_id":1},"2_data":[{"0_3":[1,2],"1_3":{}},{"0_3":"b"}],"3_last":true})";
  EXPECT_EQ(cut_to(whole, whole.size()), whole);
  for (std::size_t limit = 12; limit < whole.size(); ++limit) {
    const std::string cut = cut_to(whole, limit);
    EXPECT_LE(cut.size(), limit);
    const auto json = ordered_json::parse(cut, nullptr, false);
    ASSERT_TRUE(json.is_object()) << cut;
    EXPECT_EQ(json.back(), true) << cut;
    EXPECT_TRUE(cut.ends_with(R"("cut":true})")) << cut;
    if (limit < 60 && cut == R"({"cut":true})") continue;  // too short for the first member
    const std::size_t kept = cut.find_last_not_of("]}", cut.size() - 13);
    EXPECT_EQ(cut.substr(0, kept + 1), whole.substr(0, kept + 1));
  }
  EXPECT_EQ(cut_to(whole, 105),
            R"({"1_incident":{"1_id":"a \"quoted, {[ \\","4_event_id":1},"2_data":[{"0_3":[1,2],"1_3":{}}],"cut":true})");
}

struct Payload {
  void write_argument(xr::com::json::Json_text& json) const {
    json.key("2_data");
    json.begin_array();
    for (std::int64_t i = 0; i < 5000; ++i) json.value(i);
    json.end_array();
  }
};

TEST(IncidentCut, TheLineIsWholeOrCutAtSixteenKibibytes) {
  using namespace xr::com::cpp_binding::log;
  const ara::log::testing::Capture capture{ara::log::LogLevel::kDebug};
  const std::string text(10'000, 'x');
  xr::com::log::target::Dlt::trace(incidents::Event_deserialize_exception{{{"a::B"}, "0x0001"}, 1, text});
  xr::com::log::target::Dlt::trace(incidents::Event_update_rx{{{"a::B"}, "0x0001"}, 1}, Payload{});
  const auto lines = capture.Lines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(ordered_json::parse(lines[0])["1_incident"]["5_text"], text);
  EXPECT_LE(lines[1].size(), 16384U);
  EXPECT_GT(lines[1].size(), 16370U);
  EXPECT_EQ(ordered_json::parse(lines[1])["cut"], true);
}

}  // namespace
