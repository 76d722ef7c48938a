#include "ara/log/testing/capture.h"
#include "binding/incidents/event_incidents.h"
#include "binding/incidents/field_incidents.h"
#include "binding/incidents/method_incidents.h"
#include "binding/incidents/service_incidents.h"
#include "binding/incidents/target.h"
#include "binding/proxy/find_service.h"
#include "fakes.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <functional>
#include <ostream>

namespace binding_test {
namespace {

using ara::log::LogLevel;
using ara::log::testing::Capture;
using xr::com::cpp_binding::log::Identity;
using xr::com::log::target::Dlt;
using Instance = xr::com::runtime::Service_instance;

namespace incidents = xr::com::cpp_binding::log::incidents;
namespace users = ara::com::log::incidents;

const Identity kIdentity{{"a::B"}, "0x0001"};
const qe::com::runtime::Instance_id kInstance{"0x0001"};

struct IncidentRow {
  std::string name;
  LogLevel level;
  std::string extras;  // behind the identity
  std::function<void()> trace;
};

void PrintTo(const IncidentRow& row, std::ostream* out) {
  *out << row.name;
}

template <class Incident>
IncidentRow Row(const char* name, LogLevel level, const char* extras, Incident incident) {
  return {name, level, extras, [incident] { Dlt::trace(incident); }};
}

class IncidentTest : public testing::TestWithParam<IncidentRow> {};

TEST_P(IncidentTest, IsOneLineOfJsonAtItsLevel) {
  const auto& row = GetParam();
  {
    const Capture capture{row.level};
    row.trace();
    ASSERT_EQ(capture.Lines().size(), 1U);
    EXPECT_EQ(capture.Records()[0].level, row.level);
    EXPECT_EQ(capture.Lines()[0], R"({"1_incident":{"1_id":")" + row.name +
                                      R"(","2_service_id":{"1_id":"Service_id","2_char const*":"a::B"},)" +
                                      R"("3_instance_id":{"1_id":"Instance_id","2_string":"0x0001"})" + row.extras + "}}");
  }
  const Capture below{static_cast<LogLevel>(static_cast<int>(row.level) - 1)};
  row.trace();
  EXPECT_TRUE(below.Lines().empty());
}

const qe::com::runtime::Service_handle kFound{{"a::B", false}, "0x0002"};

INSTANTIATE_TEST_SUITE_P(
    All, IncidentTest,
    testing::Values(Row("Event_update_rx", LogLevel::kDebug, R"(,"4_event_id":18)", incidents::Event_update_rx{kIdentity, 18}),
                    Row("Event_update_when_not_subscribed", LogLevel::kError, R"(,"4_event_id":0)",
                        incidents::Event_update_when_not_subscribed{kIdentity, 0}),
                    Row("Event_deserialize_exception", LogLevel::kError, R"(,"4_event_id":1,"5_text":"a \"b\"")",
                        incidents::Event_deserialize_exception{kIdentity, 1, "a \"b\""}),
                    Row("Event_state_handler_exception", LogLevel::kError, R"(,"4_event_id":1)",
                        incidents::Event_state_handler_exception{kIdentity, 1}),
                    Row("Event_receive_handler_exception", LogLevel::kFatal, R"(,"4_event_id":1)",
                        incidents::Event_receive_handler_exception{kIdentity, 1}),
                    Row("Event_receive_handler_performance", LogLevel::kWarn, R"(,"4_event_id":1,"5_time":251)",
                        incidents::Event_receive_handler_performance{kIdentity, 1, 251}),
                    Row("Event_receive_handler", LogLevel::kDebug, R"(,"4_event_id":1)", incidents::Event_receive_handler{kIdentity, 1}),
                    Row("Event_cache_update", LogLevel::kInfo, R"(,"4_event_id":1)", incidents::Event_cache_update{kIdentity, 1}),
                    Row("Method_call_request_tx", LogLevel::kDebug, R"(,"4_method_id":1)", incidents::Method_call_request_tx{kIdentity, 1}),
                    Row("Method_call_request_err", LogLevel::kError, R"(,"4_method_id":1,"5_error_code":-1,"6_text":"t")",
                        incidents::Method_call_request_err{kIdentity, 1, -1, "t"}),
                    Row("Method_call_response_rx", LogLevel::kDebug, R"(,"4_method_id":1,"5_error_code":0,"6_text":"t")",
                        incidents::Method_call_response_rx{kIdentity, 1, 0, "t"}),
                    Row("Method_call_response_invalid_code", LogLevel::kError, R"(,"4_method_id":1,"5_error_code":9,"6_text":"t")",
                        incidents::Method_call_response_invalid_code{kIdentity, 1, 9, "t"}),
                    Row("Method_call_deserializer_exception", LogLevel::kError, R"(,"4_method_id":1,"5_error_code":138,"6_text":"t")",
                        incidents::Method_call_deserializer_exception{kIdentity, 1, 138, "t"}),
                    Row("Method_call_request_cancelled", LogLevel::kInfo, R"(,"4_method_id":1)",
                        incidents::Method_call_request_cancelled{kIdentity, 1}),
                    Row("Field_subscribe", LogLevel::kInfo, R"(,"4_event_id":16)", users::Field_subscribe{"a::B", kInstance, 16}),
                    Row("Find_service_start", LogLevel::kInfo, "", users::Find_service_start{"a::B", "0x0001"}),
                    Row("Find_service_result", LogLevel::kDebug,
                        R"(,"4_service_handles":[{"1_id":"Service_handle","2_service_id":{"1_id":"Service_id","string":"a::B"},)"
                        R"("3_instance_id":{"1_id":"Instance_id","2_string":"0x0002"}}])",
                        incidents::Find_service_result{kIdentity, {&kFound, 1}}),
                    Row("Find_service_handler_exception", LogLevel::kError, "", incidents::Find_service_handler_exception{kIdentity}),
                    Row("Find_service_handler_performance", LogLevel::kWarn, R"(,"4_time":501)",
                        incidents::Find_service_handler_performance{kIdentity, 501}),
                    Row("Service_proxy_constructed", LogLevel::kDebug, R"(,"4_struct4bytes":true,"5_utf8simple":true)",
                        incidents::Service_proxy_constructed{kIdentity, true, true})),
    [](const auto& row) { return row.param.name; });

TEST(Incidents, WhatIsNoJsonTextIsNotWritten) {
  const Capture capture{LogLevel::kVerbose};
  Dlt::trace(incidents::Event_deserialize_exception{kIdentity, 1, "\xFF"});
  EXPECT_TRUE(capture.Lines().empty());
}

TEST(Incidents, RecordDataNumbersTheMembersThatArePresent) {
  auto sample = FullSample();
  sample.text = "ok";
  sample.flag.reset();
  nlohmann::ordered_json json;
  xr::com::json::serialization::Json_serializer::write(json, std::vector{sample});
  const auto expected = nlohmann::ordered_json::parse(R"([{
    "0_1WireType":2,"0_2DataID":0,"0_3":19, "1_1WireType":7,"1_2DataID":1,"1_3":"ok",
    "2_1WireType":7,"2_2DataID":3,"2_3":[19,4294967295], "3_1WireType":7,"3_2DataID":2,"3_3":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16],
    "4_1WireType":7,"4_2DataID":4,"4_3":{"0_3":258,"1_3":65534,"2_3":[170,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]},
    "5_1WireType":1,"5_2DataID":6,"5_3":4660, "6_1WireType":3,"6_2DataID":677,"6_3":81985529216486895,
    "7_1WireType":2,"7_2DataID":7,"7_3":-12.5}])");
  EXPECT_EQ(json, expected) << json.dump(1);
}

TEST(Incidents, FindReportsItsResultAndStopsTheHandlersException) {
  const Capture capture{LogLevel::kDebug};
  std::size_t count = 0;
  xr::com::cpp_binding::proxy::report_instances("a::B", "*",
                                                [&](std::vector<Instance> found) {
                                                  count = found.size();
                                                  throw std::runtime_error{"handler"};
                                                },
                                                {Instance{"a::B", kInstance, nullptr}});
  EXPECT_EQ(count, 1U);
  ASSERT_EQ(capture.Lines().size(), 2U);
  EXPECT_NE(capture.Lines()[0].find(R"("3_instance_id":{"1_id":"Instance_id","2_string":"*"},"4_service_handles":[{)"), std::string::npos);
  EXPECT_EQ(CountOf(capture.Lines(), "Find_service_handler_exception"), 1U);
}

}  // namespace
}  // namespace binding_test
