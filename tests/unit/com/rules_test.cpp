// The rules of instances, calls and subscriptions, with time and peers made by hand.
#include <gmock/gmock.h>

#include <set>

#include "xr/com/transport/call_table.h"
#include "xr/com/transport/known_instances.h"
#include "xr/com/transport/search.h"
#include "xr/com/transport/subscription_book.h"
#include "xr/com/transport/tcp_link.h"

namespace xr::com::transport {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Change = Known_instances::Change;
using State = Subscription_book::State;

constexpr Instance_key kKey{0x6310, 1};
const Known_instances::Time kStart{1000s};

Offer offer_of(const char* address, std::uint16_t port = 4711) {
  const auto host = boost::asio::ip::make_address_v4(address);
  return {{host, 30490, wire::Protocol::udp}, wire::Endpoint{host, port, wire::Protocol::udp}, {}};
}

TEST(KnownInstances, AnotherHostWaitsUntilTheTimeOfTheFirstEnds) {
  Known_instances known;
  EXPECT_EQ(known.offer(kKey, offer_of("127.0.0.2"), 3, kStart), Change::appeared);
  EXPECT_EQ(known.offer(kKey, offer_of("127.0.0.3"), 3, kStart + 2s), Change::foreign_host);
  EXPECT_FALSE(known.withdraw(kKey, offer_of("127.0.0.3").peer));
  EXPECT_EQ(known.next_expiry(), kStart + 3s) << "the foreign offer prolongs nothing";
  EXPECT_EQ(known.expire(kStart + 3s), kKey);
  EXPECT_EQ(known.offer(kKey, offer_of("127.0.0.3"), 3, kStart + 3s), Change::appeared);
}

TEST(KnownInstances, RepeatedOffersProlongAndOtherEndpointsAreToldApart) {
  Known_instances known;
  known.offer(kKey, offer_of("127.0.0.2"), 3, kStart);
  EXPECT_EQ(known.offer(kKey, offer_of("127.0.0.2"), 3, kStart + 2s), Change::repeated);
  EXPECT_EQ(known.expire(kStart + 4s), std::nullopt);
  EXPECT_EQ(known.offer(kKey, offer_of("127.0.0.2", 4712), wire::kTtlForever, kStart + 4s), Change::moved);
  EXPECT_EQ(known.find(kKey)->udp->port, 4712);
  EXPECT_EQ(known.next_expiry(), std::nullopt) << "for ever";
}

TEST(KnownInstances, HaveABound) {
  Known_instances known;
  for (std::uint16_t i = 1; i <= Known_instances::kMaximum; ++i) known.offer({1, i}, offer_of("127.0.0.2"), 3, kStart);
  EXPECT_EQ(known.offer({2, 1}, offer_of("127.0.0.2"), 3, kStart), Change::full);
  EXPECT_EQ(known.offer({1, 1}, offer_of("127.0.0.2"), 3, kStart), Change::repeated);
}

TEST(Search, WaitsInTheWindowThenDoublesThenIsQuiet) {
  auto settings = wire::default_deployment().discovery;
  std::set<std::int64_t> first;
  for (unsigned seed = 0; seed < 50; ++seed) {
    Search_delays delays{settings, seed};
    first.insert(delays.next()->count());
    EXPECT_EQ(delays.next(), 100ms);
    EXPECT_EQ(delays.next(), 200ms);
    EXPECT_EQ(delays.next(), 400ms);
    EXPECT_EQ(delays.next(), std::nullopt);
  }
  EXPECT_GE(*first.begin(), 10);
  EXPECT_LE(*first.rbegin(), 50);
  EXPECT_GT(first.size(), 5U) << "a random delay";
}

TEST(ReconnectDelays, DoubleUpToTwoSecondsAndBeginAnew) {
  Reconnect_delays delays;
  for (const auto expected : {100ms, 200ms, 400ms, 800ms, 1600ms, 2000ms, 2000ms}) EXPECT_EQ(delays.next(), expected);
  delays.reset();
  EXPECT_EQ(delays.next(), 100ms);
}

std::shared_ptr<Call> get_call() {
  auto call = std::make_shared<Call>();
  call->method = 7;
  return call;
}

TEST(CallTable, WrapsPastZeroAndPastSessionsInUse) {
  Call_table table;
  const auto lasting = get_call();
  EXPECT_EQ(table.add(lasting), 1);
  for (int i = 2; i <= 0xFFFF; ++i) {
    const auto call = get_call();
    const auto session = table.add(call);
    ASSERT_EQ(session, i);
    table.remove(*session, call.get());
  }
  EXPECT_EQ(table.add(get_call()), 2);
  EXPECT_EQ(table.find(1, 7), lasting);
  EXPECT_EQ(table.find(1, 8), nullptr) << "an answer to another method";
}

struct Book : testing::Test {
  static bool all(std::uint16_t) { return true; }
  /// What is due, which is then sent.
  std::vector<std::uint16_t> due() {
    const auto fields = book.due(all);
    for (const auto field : fields) book.sent(field);
    return fields;
  }

  std::vector<State> states;
  Subscription_book book{3, [this](std::uint16_t, State state) { states.push_back(state); }};
};

TEST_F(Book, TellsOnceWhatTheServiceMayStillHoldAfterALoss) {
  for (std::uint16_t field = 0; field < 3; ++field) book.want(field);
  due();
  book.acknowledged(0);
  book.refused(1);
  EXPECT_FALSE(book.is_left(0)) << "nothing was lost";
  book.drop(all);
  book.drop(all);
  EXPECT_TRUE(book.is_left(0));
  EXPECT_FALSE(book.is_left(1)) << "it was refused";
  EXPECT_TRUE(book.is_left(2)) << "its answer may be on its way";
  book.sent(0);
  EXPECT_FALSE(book.is_left(0));
}

TEST_F(Book, WhatCannotGoNowStaysDue) {
  book.want(0);
  EXPECT_THAT(book.due([](std::uint16_t) { return false; }), IsEmpty());
  EXPECT_THAT(due(), ElementsAre(0));
  EXPECT_TRUE(book.unwant(0));
  book.acknowledged(0);  // a late one
  EXPECT_FALSE(book.unwant(0));
  EXPECT_THAT(states, ElementsAre(State::pending, State::not_subscribed));
}

}  // namespace
}  // namespace xr::com::transport
