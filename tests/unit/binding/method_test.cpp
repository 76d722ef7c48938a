#include "ara/log/testing/capture.h"
#include "fakes.h"
#include "xr/com/exceptions.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ostream>

namespace binding_test {
namespace {

using namespace std::chrono_literals;
using ara::log::LogLevel;
using ara::log::testing::Capture;

class MethodTest : public testing::Test {
 protected:
  std::shared_ptr<FakePort> port = std::make_shared<FakePort>();
  std::unique_ptr<Field> field = std::make_unique<Field>(port, std::make_shared<HandDriven>());
};

TEST_F(MethodTest, GetSendsNothingAndGivesTheAnswer) {
  auto future = field->get();
  EXPECT_EQ(port->calls[0]->method.field, 2);
  EXPECT_EQ(port->calls[0]->method.kind, Method_kind::get);
  EXPECT_TRUE(port->calls[0]->request.empty());
  EXPECT_EQ(future.wait_for(0ms), qe::com::Future_status::timeout);
  port->Answer(0, {0, Encoded({FullSample()})});
  EXPECT_EQ(future.get(), std::vector{FullSample()});
}

TEST_F(MethodTest, SetSendsTheValueAndTellsItAtDebug) {
  const Capture capture{LogLevel::kDebug};
  Sample sample;
  sample.flag = true;
  auto future = field->set({sample});
  EXPECT_EQ(port->calls[0]->method.kind, Method_kind::set);
  EXPECT_EQ(port->calls[0]->request, Encoded({sample}));
  port->Answer(0, {0, Encoded({})});
  EXPECT_TRUE(future.get().empty());
  // The second of the settable fields, behind three gets.
  EXPECT_NE(capture.Lines().at(0).find(R"("4_method_id":4},"2_data":[{"0_1WireType":0,"0_2DataID":5,"0_3":true}]})"), std::string::npos);
  EXPECT_EQ(CountOf(capture.Lines(), "Method_call_response_rx"), 1U);
}

TEST_F(MethodTest, ThrowsWithoutIncidentWhenNotAvailable) {
  const Capture capture{LogLevel::kVerbose};
  port->available = false;
  EXPECT_THROW(field->get(), xr::com::Service_not_available_exception);
  EXPECT_THROW(field->set({}), xr::com::Service_not_available_exception);
  EXPECT_TRUE(port->calls.empty());
  EXPECT_TRUE(capture.Lines().empty());
}

struct ErrorRow {
  unsigned char code;
  const char* exception;  // its text
  int transportCode;      // 0: no transport exception
  const char* incident;
  LogLevel level;
  int errorCode;
};

void PrintTo(const ErrorRow& row, std::ostream* out) {
  *out << int{row.code};
}

class ErrorReply : public MethodTest, public testing::WithParamInterface<ErrorRow> {};

TEST_P(ErrorReply, EndsTheFutureAndIsAnIncident) {
  const auto& row = GetParam();
  const Capture capture{LogLevel::kDebug};
  auto future = field->get();
  port->Answer(0, {row.code, row.code == 0 ? Hex("00000004 00000001") : Bytes{}});
  try {
    future.get();
    FAIL() << "nothing thrown";
  } catch (const xr::com::Transport_exception& e) {
    EXPECT_EQ(e.code(), row.transportCode);
    EXPECT_STREQ(e.what(), row.exception);
  } catch (const std::exception& e) {
    EXPECT_EQ(row.transportCode, 0);
    EXPECT_STREQ(e.what(), row.exception);
  }
  const auto last = capture.Records().back();
  EXPECT_EQ(last.level, row.level);
  EXPECT_NE(last.text.find("{\"1_id\":\"" + std::string{row.incident} + '"'), std::string::npos) << last.text;
  EXPECT_NE(last.text.find("\"5_error_code\":" + std::to_string(row.errorCode) + ','), std::string::npos) << last.text;
}

constexpr auto kTransport = "Transport exception";

INSTANTIATE_TEST_SUITE_P(
    Codes, ErrorReply,
    testing::Values(ErrorRow{33, "own error", 0, "Method_call_response_rx", LogLevel::kDebug, 33},
                    ErrorRow{129, kTransport, 129, "Method_call_request_err", LogLevel::kError, 129},
                    ErrorRow{130, kTransport, 130, "Method_call_request_err", LogLevel::kError, 130},
                    ErrorRow{134, kTransport, 134, "Method_call_request_err", LogLevel::kError, 134},
                    ErrorRow{255, "Service not available exception", 0, "Method_call_request_err", LogLevel::kError, -1},
                    ErrorRow{1, kTransport, 1, "Method_call_response_invalid_code", LogLevel::kError, 1},
                    ErrorRow{254, kTransport, 254, "Method_call_response_invalid_code", LogLevel::kError, 254},
                    ErrorRow{34, kTransport, 138, "Method_call_deserializer_exception", LogLevel::kError, 138},   // broken source
                    ErrorRow{0, kTransport, 138, "Method_call_deserializer_exception", LogLevel::kError, 138}));  // undecodable

TEST_F(MethodTest, EveryCallThatNeverBecameReadyIsAnIncidentWhenTheFieldGoes) {
  const Capture capture;
  auto answered = field->get();
  auto fetched = field->get();
  auto dropped = field->get();
  auto outOfTime = field->get();
  port->Answer(0, {0, Encoded({})});
  port->Answer(1, {0, Encoded({})});
  fetched.get();
  dropped = {};
  port->GiveUp(3);
  const auto open = field->set({});  // takes the four off the list
  const auto last = field->get();
  field.reset();
  ASSERT_EQ(capture.Lines().size(), 4U) << "of the dropped one, the one out of time, the two open ones";
  EXPECT_EQ(CountOf(capture.Lines(), "Method_call_request_cancelled"), 4U);
  EXPECT_EQ(capture.Records()[0].level, LogLevel::kInfo);
  EXPECT_EQ(outOfTime.wait_for(0ms), qe::com::Future_status::timeout);
  EXPECT_TRUE(port->calls[4]->abandoned && port->calls[5]->abandoned);
}

TEST_F(MethodTest, ACallWhoseFutureGoesIsGivenUpAtOnce) {
  auto future = field->get();
  EXPECT_FALSE(port->calls[0]->abandoned);
  future = field->get();
  EXPECT_TRUE(port->calls[0]->abandoned);
  EXPECT_FALSE(port->calls[1]->abandoned);
}

TEST_F(MethodTest, ManyUnansweredCallsAreSaidUpToABound) {
  const Capture capture;
  for (int call = 0; call < 150; ++call) (void)field->get();
  field.reset();
  EXPECT_EQ(capture.Lines().size(), 100U);
}

}  // namespace
}  // namespace binding_test
