#include "ara/log/testing/capture.h"
#include "binding/incidents/event_incidents.h"
#include "binding/incidents/field_incidents.h"
#include "binding/incidents/method_incidents.h"
#include "binding/incidents/service_incidents.h"
#include "binding/incidents/target.h"
#include "binding/proxy/find_service.h"
#include "fakes.h"
#include "tests/support/wait_for.h"
#include "xr/com/transport/counted_warnings.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

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

/// The incident is one line of JSON at its level: its name and identity, then `extras`.
template <class Incident>
void IsWritten(std::string_view name, LogLevel level, std::string_view extras, const Incident& incident) {
  const Capture capture{LogLevel::kDebug};
  Dlt::trace(incident);
  ASSERT_EQ(capture.Lines().size(), 1U) << name;
  EXPECT_EQ(capture.Records()[0].level, level) << name;
  EXPECT_EQ(capture.Lines()[0], R"({"1_incident":{"1_id":")" + std::string{name} +
                                    R"(","2_service_id":{"1_id":"Service_id","2_char const*":"a::B"},)" +
                                    R"("3_instance_id":{"1_id":"Instance_id","2_string":"0x0001"})" + std::string{extras} + "}}");
}

// clang-format off
TEST(Incidents, EachIsOneLineOfJsonAtItsLevel) {
  using enum LogLevel;
  const qe::com::runtime::Service_handle found{{"a::B", false}, "0x0002"};
  IsWritten("Event_update_rx",                    kDebug, R"(,"4_event_id":18)", incidents::Event_update_rx{kIdentity, 18});
  IsWritten("Event_update_when_not_subscribed",   kError, R"(,"4_event_id":0)", incidents::Event_update_when_not_subscribed{kIdentity, 0});
  IsWritten("Event_deserialize_exception",        kError, R"(,"4_event_id":1,"5_text":"a \"b\\\n\u0001\u001fé")",
            incidents::Event_deserialize_exception{kIdentity, 1, "a \"b\\\n\x01\x1F\xC3\xA9"});
  IsWritten("Event_state_handler_exception",      kError, R"(,"4_event_id":1)", incidents::Event_state_handler_exception{kIdentity, 1});
  IsWritten("Event_receive_handler_exception",    kFatal, R"(,"4_event_id":1)", incidents::Event_receive_handler_exception{kIdentity, 1});
  IsWritten("Event_receive_handler_performance",  kWarn,  R"(,"4_event_id":1,"5_time":251)", incidents::Event_receive_handler_performance{kIdentity, 1, 251});
  IsWritten("Event_receive_handler",              kDebug, R"(,"4_event_id":1)", incidents::Event_receive_handler{kIdentity, 1});
  IsWritten("Event_cache_update",                 kInfo,  R"(,"4_event_id":1)", incidents::Event_cache_update{kIdentity, 1});
  IsWritten("Method_call_request_tx",             kDebug, R"(,"4_method_id":1)", incidents::Method_call_request_tx{kIdentity, 1});
  IsWritten("Method_call_request_err",            kError, R"(,"4_method_id":1,"5_error_code":-1,"6_text":"t")", incidents::Method_call_request_err{kIdentity, 1, -1, "t"});
  IsWritten("Method_call_response_rx",            kDebug, R"(,"4_method_id":1,"5_error_code":0,"6_text":"t")", incidents::Method_call_response_rx{kIdentity, 1, 0, "t"});
  IsWritten("Method_call_response_invalid_code",  kError, R"(,"4_method_id":1,"5_error_code":9,"6_text":"t")", incidents::Method_call_response_invalid_code{kIdentity, 1, 9, "t"});
  IsWritten("Method_call_deserializer_exception", kError, R"(,"4_method_id":1,"5_error_code":138,"6_text":"t")", incidents::Method_call_deserializer_exception{kIdentity, 1, 138, "t"});
  IsWritten("Method_call_request_cancelled",      kInfo,  R"(,"4_method_id":1)", incidents::Method_call_request_cancelled{kIdentity, 1});
  IsWritten("Field_subscribe",                    kInfo,  R"(,"4_event_id":16)", users::Field_subscribe{"a::B", kInstance, 16});
  IsWritten("Find_service_start",                 kInfo,  "", users::Find_service_start{"a::B", "0x0001"});
  IsWritten("Find_service_result",                kDebug, R"(,"4_service_handles":[{"1_id":"Service_handle","2_service_id":{"1_id":"Service_id","string":"a::B"},)"
            R"("3_instance_id":{"1_id":"Instance_id","2_string":"0x0002"}}])", incidents::Find_service_result{kIdentity, {&found, 1}});
  IsWritten("Find_service_handler_exception",     kError, "", incidents::Find_service_handler_exception{kIdentity});
  IsWritten("Find_service_handler_performance",   kWarn,  R"(,"4_time":501)", incidents::Find_service_handler_performance{kIdentity, 501});
  IsWritten("Service_proxy_constructed",          kDebug, R"(,"4_struct4bytes":true,"5_utf8simple":false)", incidents::Service_proxy_constructed{kIdentity, true, false});
}
// clang-format on

TEST(Incidents, WhatIsNoUtf8IsNotWritten) {
  const Capture capture{LogLevel::kVerbose};
  for (const char* text : {"\xFF", "\xC3(", "\xC0\xAF", "\xE2\x82", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xF0\x80\x80\x80"}) {
    Dlt::trace(incidents::Event_deserialize_exception{kIdentity, 1, text});
    EXPECT_TRUE(capture.Lines().empty()) << text;
  }
  Dlt::trace(incidents::Event_deserialize_exception{kIdentity, 1, "\xE2\x82\xAC\xF0\x9F\x9A\x97"});
  EXPECT_EQ(capture.Lines().size(), 1U);
}

TEST(Incidents, RecordDataNumbersTheMembersThatArePresent) {
  auto sample = FullSample();
  sample.text = "ok";
  sample.flag.reset();
  xr::com::json::Json_text json;
  xr::com::json::serialization::Json_serializer::write(json, std::vector{sample, {}});
  EXPECT_EQ(json.take(), R"([{"0_1WireType":2,"0_2DataID":0,"0_3":19,"1_1WireType":7,"1_2DataID":1,"1_3":"ok",)"
                         R"("2_1WireType":7,"2_2DataID":3,"2_3":[19,4294967295],"3_1WireType":7,"3_2DataID":2,)"
                         R"("3_3":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16],"4_1WireType":7,"4_2DataID":4,)"
                         R"("4_3":{"0_3":258,"1_3":65534,"2_3":[170,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]},)"
                         R"("5_1WireType":1,"5_2DataID":6,"5_3":4660,"6_1WireType":3,"6_2DataID":677,"6_3":81985529216486895,)"
                         R"("7_1WireType":2,"7_2DataID":7,"7_3":-12.5},{}])");
}

TEST(Incidents, FindReportsItsResultAndStopsTheHandlersExceptionAndDelay) {
  const Capture capture{LogLevel::kDebug};
  const auto find = [](std::chrono::milliseconds delay) {
    xr::com::cpp_binding::proxy::report_instances("a::B", "*",
                                                  [delay](std::vector<Instance>) {
                                                    std::this_thread::sleep_for(delay);
                                                    throw std::runtime_error{"handler"};
                                                  },
                                                  {Instance{"a::B", kInstance, nullptr}});
  };
  find({});
  EXPECT_NE(capture.Lines()[0].find(R"("3_instance_id":{"1_id":"Instance_id","2_string":"*"},"4_service_handles":[{)"), std::string::npos);
  EXPECT_EQ(CountOf(capture.Lines(), "Find_service_handler_exception"), 1U);
  EXPECT_EQ(CountOf(capture.Lines(), "Find_service_handler_performance"), 0U);
  find(std::chrono::milliseconds{501});
  EXPECT_EQ(CountOf(capture.Lines(), "Find_service_handler_performance"), 1U);
}

TEST(Warnings, OfOneKindInASecondAreCountedAndSaidWithTheNext) {
  using xr::com::transport::Fault;
  const Capture capture;
  xr::com::transport::Counted_warnings warnings;
  int calls = 0;
  const auto warn = [&](Fault fault) {
    ++calls;
    warnings.warn(fault, [](auto& line) { line << "trouble"; });
  };
  warn(Fault::segment);
  warn(Fault::connection);
  EXPECT_EQ(capture.Lines(), (std::vector<std::string>{"trouble", "trouble"}));
  calls = 0;
  ASSERT_TRUE(test_support::WaitFor([&] { return warn(Fault::segment), capture.Lines().size() > 2; }));
  EXPECT_EQ(capture.Lines()[2], "trouble (and " + std::to_string(calls - 1) + " more like it before)");
}

}  // namespace
}  // namespace binding_test
