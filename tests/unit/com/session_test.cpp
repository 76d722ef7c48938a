#include "xr/com/wire/session.h"

#include <gtest/gtest.h>

namespace xr::com::wire {
namespace {

Endpoint peer(std::uint16_t port = 30490) {
  return {boost::asio::ip::make_address_v4("127.0.0.2"), port, Protocol::udp};
}

constexpr auto kMulticast = Direction::multicast;
constexpr auto kUnicast = Direction::unicast;

TEST(Sessions, WrapToOneAndLoseTheRebootFlag) {
  Session_counter counter;
  EXPECT_EQ(counter.next().id, 1);
  Session last{};
  for (int i = 2; i <= 0xFFFF; ++i) last = counter.next();
  EXPECT_EQ(last.id, 0xFFFF);
  EXPECT_TRUE(last.reboot);
  const auto wrapped = counter.next();
  EXPECT_EQ(wrapped.id, 1);
  EXPECT_FALSE(wrapped.reboot);
}

TEST(Sessions, CountEachDestinationForItself) {
  Outgoing_sessions sessions;
  EXPECT_EQ(sessions.next_multicast().id, 1);
  EXPECT_EQ(sessions.next_unicast(peer(1)).id, 1);
  EXPECT_EQ(sessions.next_unicast(peer(1)).id, 2);
  EXPECT_EQ(sessions.next_unicast(peer(2)).id, 1);
  EXPECT_EQ(sessions.next_multicast().id, 2);
}

TEST(RebootDetection, SeesALowerSessionAndAFlagThatComesBack) {
  Reboot_detection detection;
  EXPECT_FALSE(detection.received(peer(), kMulticast, {5, true})) << "the first message of a peer tells nothing";
  EXPECT_FALSE(detection.received(peer(), kMulticast, {9, true})) << "lost messages are no reboot";
  EXPECT_TRUE(detection.received(peer(), kMulticast, {9, true}));
  EXPECT_TRUE(detection.received(peer(), kMulticast, {1, true}));
  EXPECT_FALSE(detection.received(peer(), kMulticast, {1, false})) << "a wrap";
  EXPECT_TRUE(detection.received(peer(), kMulticast, {2, true}));
}

TEST(RebootDetection, TellsOneRebootOnceOverBothDirections) {
  Reboot_detection detection;
  detection.received(peer(), kMulticast, {20, true});
  detection.received(peer(), kUnicast, {30, true});
  EXPECT_FALSE(detection.received(peer(1), kMulticast, {1, true})) << "another peer";
  EXPECT_TRUE(detection.received(peer(), kMulticast, {1, true}));
  EXPECT_FALSE(detection.received(peer(), kUnicast, {1, true}));
}

TEST(RebootDetection, ANewLifeKnownFromElsewhereStartsBothDirectionsAnew) {
  Reboot_detection detection;
  EXPECT_FALSE(detection.is_first(peer(), kMulticast)) << "a stranger has no other direction";
  detection.received(peer(), kUnicast, {3, true});
  EXPECT_TRUE(detection.is_first(peer(), kMulticast));
  detection.received(peer(), kMulticast, {1, true});
  detection.restarted(peer(), kMulticast, {1, true});
  EXPECT_FALSE(detection.received(peer(), kUnicast, {1, true})) << "the new life's first answer";
  EXPECT_TRUE(detection.received(peer(), kMulticast, {1, true}));
}

TEST(RebootDetection, ForgetsTheLongestSilentPeerAtItsBound) {
  Reboot_detection detection;
  for (std::uint16_t port = 1; port <= kMaximumPeers + 1; ++port) detection.received(peer(port), kUnicast, {5, true});
  EXPECT_TRUE(detection.received(peer(2), kUnicast, {1, true}));
  EXPECT_FALSE(detection.received(peer(1), kUnicast, {1, true}));
}

}  // namespace
}  // namespace xr::com::wire
