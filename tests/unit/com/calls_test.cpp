#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "client_fixture.h"
#include "xr/com/exceptions.h"

namespace com_test {
namespace {

using namespace xr::com::wire;

struct Calls : Client {
  /// Reads the request that a call has sent; its failure is the test's.
  Received request() {
    const auto received = vehicle_.wait_request();
    if (!received) ADD_FAILURE() << "no request came";
    return received.value_or(Received{});
  }
};

TEST_F(Calls, AGetOverUdpIsAnsweredWithItsPayload) {
  meet();
  const auto pending = call(get("views"));
  EXPECT_FALSE(pending->is_ready());
  const auto received = request();
  EXPECT_TRUE(received.from);
  EXPECT_EQ(received.header,
            (Header{.service = kServiceId, .method = 0x22, .client = received.header.client, .session = 1, .interface_version = 1}));
  EXPECT_TRUE(received.payload.empty());
  vehicle_.reply(received, {1, 2, 3});
  const auto reply = replies_.next();
  EXPECT_EQ(reply.code, 0);
  EXPECT_EQ(reply.payload, (Bytes{1, 2, 3}));
  EXPECT_TRUE(pending->is_ready());
}

TEST_F(Calls, ASetOverTcpGoesAndComesWithAnyError) {
  meet_over_tcp();
  const auto pending = call(set("valueControls"), Bytes(40000, 7));
  const auto received = request();
  EXPECT_FALSE(received.from);
  EXPECT_EQ(received.header.method, 0x50);
  EXPECT_EQ(received.payload, Bytes(40000, 7));
  vehicle_.reply(received, {9}, Message_type::error, 5);
  const auto reply = replies_.next();
  EXPECT_EQ(reply.code, 5);
  EXPECT_EQ(reply.payload, Bytes{9});
}

TEST_F(Calls, AnswersFindTheirCallsInAnyOrder) {
  meet();
  std::vector<std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call>> pending;
  std::vector<Received> requests;
  for (unsigned char i = 0; i < 3; ++i) {
    pending.push_back(call(set("views"), {i}));
    requests.push_back(request());
  }
  for (auto it = requests.rbegin(); it != requests.rend(); ++it) vehicle_.reply(*it, it->payload);
  for (unsigned char i = 3; i-- > 0;) EXPECT_EQ(replies_.next().payload, Bytes{i});
}

TEST_F(Calls, MalformedAnswersEndWith134) {
  meet();
  const auto spoil = [&](auto change) {
    const auto pending = call(get("views"));
    const auto received = request();
    auto header = received.header;
    header.type = Message_type::response;
    auto message = encode_message(header, Bytes{1, 2});
    change(message);
    vehicle_.send_answer(received, message);
    return replies_.next().code;
  };
  EXPECT_EQ(spoil([](Bytes& message) { message.pop_back(); }), Reply::kMalformed);
  EXPECT_EQ(spoil([](Bytes& message) { message[12] = 2; }), Reply::kMalformed);
  EXPECT_EQ(spoil([](Bytes& message) { message[13] = 2; }), Reply::kMalformed);
  EXPECT_EQ(spoil([](Bytes& message) { message[14] = 0x81; }), Reply::kMalformed) << "an error without a code";
}

TEST_F(Calls, ADroppedCallAndAForeignAnswerCompleteNothing) {
  meet();
  call(get("views")).reset();
  const auto dropped = request();
  const auto pending = call(get("views"));
  const auto waiting = request();
  vehicle_.reply(dropped, {1});
  Scripted_vehicle other{"127.0.0.3", deployment_, kServiceId};
  other.reply(waiting, {2});
  auto other_method = waiting;
  other_method.header.method = 0x21;
  vehicle_.reply(other_method, {3});
  vehicle_.reply(waiting, {4});
  EXPECT_EQ(replies_.next().payload, Bytes{4});
  EXPECT_TRUE(replies_.empty());
}

TEST_F(Calls, ALossEndsGetsWith255AndLeavesSetsOpenForALateAnswer) {
  meet();
  const auto pending_get = call(get("views"));
  const auto pending_set = call(set("views"));
  request();
  const auto received = request();
  vehicle_.withdraw();
  EXPECT_EQ(replies_.next().code, Reply::kServiceGone);
  EXPECT_TRUE(pending_get->is_ready());
  EXPECT_FALSE(pending_set->is_ready());
  vehicle_.reply(received, {1});
  EXPECT_EQ(replies_.next().code, 0);
}

TEST_F(Calls, ABrokenConnectionEndsItsGetsWith129) {
  meet_over_tcp();
  const auto over_udp = call(get("views"));
  const auto over_tcp = call(get("valueControls"));
  const auto open_set = call(set("valueControls"));
  const auto received = request();
  ASSERT_TRUE(received.from);
  vehicle_.drop_connection();
  EXPECT_EQ(replies_.next().code, Reply::kConnectionBroken);
  EXPECT_FALSE(port_->is_available(get("valueControls")));
  EXPECT_THROW(call(get("valueControls")), xr::com::Service_not_available_exception);
  vehicle_.reply(received, {1});
  EXPECT_EQ(replies_.next().payload, Bytes{1}) << "the other protocol's goes on";
  EXPECT_FALSE(open_set->is_ready());
}

TEST_F(Calls, UnusableBytesEndTheConnectionAndTheNextOneServes) {
  meet_over_tcp();
  const std::string garbage = "GET / HTTP/1.1\r\n\r\n";
  vehicle_.send_stream({garbage.begin(), garbage.end()});
  EXPECT_TRUE(logged("Closed the connection to 127.0.0.2"));
  ASSERT_TRUE(vehicle_.accept());
  ASSERT_TRUE(test_support::WaitFor([&] { return port_->is_available(get("valueControls")); }));
  const auto pending = call(get("valueControls"));
  vehicle_.reply(request(), {2});
  EXPECT_EQ(replies_.next().payload, Bytes{2});
}

TEST_F(Calls, AConnectionThatBreaksAgainAndAgainIsMadeAfterLongerAndLongerTimes) {
  meet_over_tcp();
  for (const auto least : {100, 200, 400}) {
    const auto broken = std::chrono::steady_clock::now();
    vehicle_.drop_connection();
    ASSERT_TRUE(vehicle_.accept());
    EXPECT_GE(std::chrono::steady_clock::now() - broken, std::chrono::milliseconds{least});
  }
}

TEST_F(Calls, ASlowPeerGetsAllItsBytesAndABoundHoldsTheRest) {
  meet_over_tcp();
  std::vector<std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call>> pending;
  bool refused = false;
  while (!refused && pending.size() < 1000) {
    try {
      pending.push_back(call(set("valueControls"), Bytes(60000, static_cast<unsigned char>(pending.size()))));
    } catch (const xr::com::Transport_exception& e) {
      EXPECT_EQ(e.code(), Reply::kSendRefused);
      refused = true;
    }
  }
  EXPECT_TRUE(refused) << "memory without a bound";
  for (std::size_t i = 0; i < pending.size(); ++i) ASSERT_EQ(request().payload, Bytes(60000, static_cast<unsigned char>(i))) << i;
  vehicle_.drop_connection();
}

TEST_F(Calls, WhatCannotBeCalledIsRefused) {
  meet();
  EXPECT_THROW(call({99, Method_kind::get}), xr::com::Invalid_argument_exception);
  EXPECT_THROW(call(set("chargingPlugs")), xr::com::Invalid_argument_exception);
  EXPECT_THROW(call(set("views"), Bytes(65535)), xr::com::Transport_exception) << "more than a datagram holds";
  vehicle_.withdraw();
  ASSERT_TRUE(test_support::WaitFor([&] { return !port_->is_available(get("views")); }));
  EXPECT_THROW(call(get("views")), xr::com::Service_not_available_exception);
}

TEST_F(Calls, MayBeMadeFromManyThreadsWhileTheServiceComesAndGoes) {
  meet();
  std::atomic<bool> done{false};
  std::vector<std::thread> callers;
  for (int i = 0; i < 3; ++i) {
    callers.emplace_back([&] {
      const auto sink = std::make_shared<Recording_sink>();
      while (!done) {
        port_->subscribe(index("views"), sink);
        try {
          const auto pending = port_->call(get("views"), std::make_shared<Bytes>(), [](const Reply&) {});
        } catch (const xr::com::Infrastructure_exception&) {
          std::this_thread::yield();
        }
        port_->unsubscribe(index("views"), sink.get());
      }
    });
  }
  for (int i = 0; i < 20; ++i) {
    vehicle_.withdraw();
    EXPECT_EQ(lists_.next().size(), 0U);
    vehicle_.move();
    vehicle_.offer();
    EXPECT_EQ(lists_.next().size(), 1U);
  }
  done = true;
  for (auto& caller : callers) caller.join();
}

TEST_F(Calls, AnUnansweredCallIsForgottenAfterFiveSeconds) {
  meet();
  vehicle_.offer(kTtlForever);
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  const auto pending =
      port_->call(get("views"), std::make_shared<Bytes>(), [this, held = std::move(held)](Reply reply) { replies_.put(std::move(reply)); });
  const auto received = request();
  const auto began = std::chrono::steady_clock::now();
  EXPECT_TRUE(test_support::WaitFor([&] { return watched.expired(); }));
  EXPECT_GT(std::chrono::steady_clock::now() - began, std::chrono::seconds{4});
  vehicle_.reply(received, {1});
  const auto fresh = call(get("views"));
  vehicle_.reply(request(), {2});
  EXPECT_EQ(replies_.next().payload, Bytes{2}) << "the late answer found no call";
  EXPECT_FALSE(pending->is_ready());
}

}  // namespace
}  // namespace com_test
