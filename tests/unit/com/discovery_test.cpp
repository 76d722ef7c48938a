#include <gmock/gmock.h>

#include "client_fixture.h"
#include "xr/com/exceptions.h"
#include "xr/com/wire/sockets.h"

namespace com_test {
namespace {

using namespace xr::com::wire;

struct Discovery : Client {
  bool is_find(const Sd_entry& entry) const { return entry.type == Entry_type::find && entry.service == kServiceId; }

  /// The next list has so many instances.
  void expect_list(std::size_t size) { EXPECT_EQ(lists_.next().size(), size); }

  Bytes received_after(Recording_sink& sink, const Endpoint& at, const Bytes& payload) {
    vehicle_.send_datagram(at, vehicle_.notification("views", payload));
    return sink.payloads.next();
  }
};

TEST_F(Discovery, AsksAFewTimesAndTakesAnOfferByUnicast) {
  for (int i = 0; i < 4; ++i) {
    const auto find = vehicle_.wait_entry([&](const Sd_entry& entry) { return is_find(entry); });
    ASSERT_EQ(find.service, kServiceId);
    EXPECT_EQ(find.instance, kAnyInstance);
    EXPECT_EQ(find.minor, kAnyMinor);
  }
  vehicle_.offer_to(vehicle_.client());
  const auto list = lists_.next();
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].service, kService);
  EXPECT_EQ(list[0].instance.value(), "0x0001");
}

TEST_F(Discovery, SubscribesOverTheFieldsProtocolAndDeliversNotifications) {
  meet_over_tcp();
  const auto views = subscribe("views");
  const auto controls = subscribe("valueControls");
  EXPECT_EQ(vehicle_.accept_subscribe("valueControls").protocol, Protocol::tcp);
  const auto udp = vehicle_.accept_subscribe("views");
  EXPECT_EQ(udp.protocol, Protocol::udp);
  EXPECT_EQ(views->states.next(), Subscription_state::pending);
  EXPECT_EQ(views->states.next(), Subscription_state::subscribed);

  auto two = vehicle_.notification("views", {1, 2});
  const auto second = vehicle_.notification("views", {3});
  two.insert(two.end(), second.begin(), second.end());
  vehicle_.send_datagram(udp, two);
  EXPECT_EQ(views->payloads.next(), (Bytes{1, 2}));
  EXPECT_EQ(views->payloads.next(), Bytes{3});
  vehicle_.send_stream(vehicle_.notification("valueControls", {4}));
  EXPECT_EQ(controls->payloads.next(), Bytes{4});
}

TEST_F(Discovery, RenewsAtHalfTheTimeAndEndsWhatIsNotWantedAnyMore) {
  meet();
  const auto sink = subscribe("views");
  const auto first = vehicle_.accept_subscribe("views");
  vehicle_.offer(kTtlForever);
  EXPECT_EQ(vehicle_.accept_subscribe("views"), first) << "a renewal";
  port_->unsubscribe(index("views"), sink.get());
  const auto end = vehicle_.wait_entry([](const Sd_entry& entry) { return entry.type == Entry_type::subscribe && entry.ttl == 0; });
  EXPECT_EQ(end.eventgroup, service().find_field("views")->eventgroup);
}

TEST_F(Discovery, AnOfferRunsOutWithItsTime) {
  vehicle_.offer(1);
  expect_list(1);
  expect_list(0);
  EXPECT_EQ(vehicle_.wait_entry([&](const Sd_entry& entry) { return is_find(entry); }).service, kServiceId) << "it is sought again";
}

TEST_F(Discovery, AServiceThatWasOnlySilentIsSubscribedAnewSoThatItTellsWhatWasMissed) {
  meet();
  const auto sink = subscribe("views");
  vehicle_.accept_subscribe("views");
  vehicle_.offer(1);
  expect_list(0);
  vehicle_.offer();
  const auto end = vehicle_.wait_entry([](const Sd_entry& entry) { return entry.type == Entry_type::subscribe && entry.ttl == 0; });
  EXPECT_EQ(end.eventgroup, service().find_field("views")->eventgroup);
  EXPECT_EQ(received_after(*sink, vehicle_.accept_subscribe("views"), {7}), Bytes{7});
}

TEST_F(Discovery, ARebootIsALossAndAReturn) {
  meet();
  const auto sink = subscribe("views");
  vehicle_.accept_subscribe("views");
  vehicle_.offer();
  vehicle_.reboot();
  vehicle_.offer();
  expect_list(0);
  expect_list(1);
  EXPECT_EQ(received_after(*sink, vehicle_.accept_subscribe("views"), {5}), Bytes{5});
  vehicle_.offer();
  vehicle_.withdraw();
  expect_list(0);
  EXPECT_TRUE(lists_.empty()) << "the acknowledgement after the reboot was no second one";
}

TEST_F(Discovery, AnOfferAtOtherEndpointsIsSubscribedThereWithoutALoss) {
  meet_over_tcp();
  const auto views = subscribe("views");
  const auto controls = subscribe("valueControls");
  vehicle_.accept_subscribe("valueControls");
  vehicle_.accept_subscribe("views");
  vehicle_.move();
  vehicle_.offer();
  ASSERT_TRUE(vehicle_.accept());
  EXPECT_EQ(received_after(*views, vehicle_.accept_subscribe("views"), {6}), Bytes{6});
  vehicle_.accept_subscribe("valueControls");
  vehicle_.send_stream(vehicle_.notification("valueControls", {7}));
  EXPECT_EQ(controls->payloads.next(), Bytes{7});
  EXPECT_TRUE(lists_.empty());
}

TEST_F(Discovery, ARefusedSubscriptionIsTriedAgainWithTheNextOffer) {
  meet();
  const auto sink = subscribe("views");
  vehicle_.answer(vehicle_.wait_subscribe("views"), 0);
  EXPECT_EQ(sink->states.next(), Subscription_state::pending);
  EXPECT_EQ(sink->states.next(), Subscription_state::not_subscribed);
  EXPECT_TRUE(logged("127.0.0.2:" + std::to_string(deployment_.discovery.port) + " refused the subscription"));
  vehicle_.offer();
  vehicle_.accept_subscribe("views");
  EXPECT_EQ(sink->states.next(), Subscription_state::pending);
  EXPECT_EQ(sink->states.next(), Subscription_state::subscribed);
}

TEST_F(Discovery, AnswersOfAForeignHostCountForNothing) {
  meet();
  Scripted_vehicle other{"127.0.0.3", deployment_, kServiceId};
  const auto sink = subscribe("views");
  auto subscription = vehicle_.wait_subscribe("views");
  other.answer_to(vehicle_.client(), subscription, subscription.ttl);
  vehicle_.answer(subscription, 0);
  EXPECT_EQ(sink->states.next(), Subscription_state::pending);
  EXPECT_EQ(sink->states.next(), Subscription_state::not_subscribed) << "a foreign acknowledgement";
  vehicle_.offer();
  subscription = vehicle_.wait_subscribe("views");
  other.answer_to(vehicle_.client(), subscription, 0);
  vehicle_.answer(subscription, subscription.ttl);
  EXPECT_EQ(sink->states.next(), Subscription_state::pending);
  EXPECT_EQ(sink->states.next(), Subscription_state::subscribed) << "a foreign refusal";
}

/// Gives its events back with the first notification.
struct Leaving_sink final : xr::com::cpp_binding::proxy::Event_sink {
  void event_updated(std::uint32_t, const std::vector<unsigned char>&) override { leave(); }
  void event_state_changed(Subscription_state) override {}

  std::function<void()> leave;
};

TEST_F(Discovery, WhatOnePeerIsToldAtATimeTravelsInOneMessage) {
  meet();
  vehicle_.withdraw();
  expect_list(0);
  const auto sink = std::make_shared<Leaving_sink>();
  const std::vector<std::uint16_t> fields{index("batteryCareModes"), index("chargingPlugs"), index("notifications"), index("views")};
  for (const auto field : fields) port_->subscribe(field, sink);
  sink->leave = [&] {
    for (const auto field : fields) port_->unsubscribe(field, sink.get());
  };
  vehicle_.offer();
  const auto subscriptions = vehicle_.wait_subscriptions();
  ASSERT_EQ(subscriptions.size(), fields.size());
  for (const auto& subscription : subscriptions) vehicle_.answer(subscription, subscription.ttl);
  EXPECT_EQ(vehicle_.wait_subscriptions(), subscriptions) << "the renewals";

  vehicle_.send_datagram(subscriptions[0].options[0].endpoint, vehicle_.notification("views", {}));
  const auto ends = vehicle_.wait_subscriptions();
  EXPECT_EQ(ends.size(), fields.size());
  for (const auto& end : ends) EXPECT_EQ(end.ttl, 0U);
}

TEST_F(Discovery, ABrokenConnectionIsMadeAgainWithItsGroups) {
  meet_over_tcp();
  const auto sink = subscribe("switchControls");
  vehicle_.accept_subscribe("switchControls");
  vehicle_.drop_connection();
  ASSERT_TRUE(vehicle_.accept());
  vehicle_.accept_subscribe("switchControls");
  vehicle_.send_stream(vehicle_.notification("switchControls", {8}));
  EXPECT_EQ(sink->payloads.next(), Bytes{8});
}

TEST_F(Discovery, IgnoresForeignOffersAndForeignNotifications) {
  meet();
  const auto sink = subscribe("views");
  const auto at = vehicle_.accept_subscribe("views");
  Scripted_vehicle other{"127.0.0.3", deployment_, kServiceId};
  other.offer();
  EXPECT_TRUE(logged("another host offers this instance"));
  other.withdraw();
  other.send_datagram(at, other.notification("views", {1}));
  EXPECT_TRUE(logged("the service is not offered there"));
  EXPECT_EQ(received_after(*sink, at, {2}), Bytes{2});
  EXPECT_TRUE(lists_.empty());
}

TEST_F(Discovery, ListsFurtherInstancesBehindTheFirst) {
  meet();
  Scripted_vehicle second{"127.0.0.3", deployment_, kServiceId, 2};
  second.offer();
  const auto list = lists_.next();
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].instance.value(), "0x0001");
  EXPECT_EQ(list[1].instance.value(), "0x0002");
  Inbox<List> only_second;
  const auto find = transport_->start_find(kService, "0x0002", [&](List found) {
    only_second.put(std::move(found));
    return true;
  });
  EXPECT_EQ(only_second.next().size(), 1U) << "at once, since it is there";
  vehicle_.withdraw();
  expect_list(1);
  second.withdraw();
  EXPECT_EQ(only_second.next().size(), 0U);
}

TEST_F(Discovery, AListThatAFindCouldNotTakeComesAgainWithTheNextOffer) {
  Inbox<std::size_t> sizes;
  int failures = 2;
  const auto find = transport_->start_find(kService, "*", [&](const List& list) {
    sizes.put(list.size());
    if (failures == 2) return --failures, false;
    if (failures-- == 1) throw std::runtime_error{"no"};
    return true;
  });
  for (int i = 0; i < 3; ++i) {
    const bool came = test_support::WaitFor([&] {  // an offer may come before the handler has said that it could not take the list
      vehicle_.offer();
      return !sizes.empty();
    });
    ASSERT_TRUE(came);
    EXPECT_EQ(sizes.next(), 1U);
  }
  vehicle_.offer();
  vehicle_.withdraw();
  EXPECT_EQ(sizes.next(), 0U) << "a list that was taken does not come again";
}

TEST_F(Discovery, OffersThatCannotBeMeantAreIgnored) {
  const auto altered = [&](auto alter) {
    auto entry = vehicle_.offer_entry(3);
    alter(entry);
    return entry;
  };
  vehicle_.send_sd({altered([](Sd_entry& e) { e.major = 2; }), altered([](Sd_entry& e) { e.instance = kAnyInstance; }),
                    altered([](Sd_entry& e) { e.instance = 0; }), altered([](Sd_entry& e) { e.service = 0x1234; }),
                    altered([](Sd_entry& e) { e.options.clear(); }), altered([](Sd_entry& e) {
                      for (auto& option : e.options) option.endpoint.port = 0;
                    }),
                    altered([](Sd_entry& e) { e.instance = 3; })});
  const auto list = lists_.next();
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].instance.value(), "0x0003");
}

TEST_F(Discovery, GarbageCostsOneLineAndNothingElse) {
  meet();
  const auto sink = subscribe("views");
  const auto at = vehicle_.accept_subscribe("views");
  const auto good = encode_sd({.session = 900, .reboot = true, .entries = {vehicle_.offer_entry(3)}});
  for (std::size_t size = 0; size < good.size(); ++size)
    vehicle_.send_raw_sd({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)});
  const auto message = vehicle_.notification("views", {1, 2, 3});
  for (std::size_t size = 0; size < message.size(); ++size) {
    vehicle_.send_datagram(at, {message.begin(), message.begin() + static_cast<std::ptrdiff_t>(size)});
  }
  auto segment = message, foreign = message, version = message;
  segment[14] = 0x22, foreign[1] = 0, version[12] = 9;
  for (const auto& bytes : {segment, foreign, version}) vehicle_.send_datagram(at, bytes);
  EXPECT_EQ(received_after(*sink, at, {4}), Bytes{4});
  EXPECT_TRUE(logged("Dropped a discovery message"));
  EXPECT_TRUE(logged("it is a segment"));
  EXPECT_LE(log_.Lines().size(), 10U);
  vehicle_.withdraw();
  expect_list(0);
}

TEST_F(Discovery, APortOutlivesItsTransport) {
  meet();
  const auto sink = subscribe("views");
  vehicle_.accept_subscribe("views");
  transport_->stop();
  EXPECT_EQ(vehicle_.wait_entry([](const Sd_entry& entry) { return entry.type == Entry_type::subscribe && entry.ttl == 0; }).ttl, 0U);
  EXPECT_FALSE(port_->is_available(get("views")));
  port_->unsubscribe(index("views"), sink.get());
  EXPECT_THROW(call(get("views")), xr::com::Service_not_available_exception);
}

}  // namespace
}  // namespace com_test
