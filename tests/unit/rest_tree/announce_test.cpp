#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/wait_for.h"
#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

using Lines = std::vector<std::string>;

TEST(Announcements, StartTellsEveryServiceAndStopWithdraws) {
  Tree tree;
  tree.server->Start(false);
  EXPECT_TRUE(tree.service->IsAnnounced());
  EXPECT_TRUE(test_support::WaitFor([] { return FrontendLog::Lines() == Lines{"start", "announce S"}; }));
  EXPECT_TRUE(tree.server->Stop(true));
  EXPECT_EQ(FrontendLog::Lines(), (Lines{"start", "announce S", "stop", "withdraw S"}));
  tree.service->Register({UriOf("http://[::1]/")});  // too late for the registry
  EXPECT_FALSE(tree.server->Stop(true));
  EXPECT_EQ(FrontendLog::Lines().size(), 4U);
}

TEST(Announcements, FollowTheLastCall) {
  Tree tree;
  tree.server->Start(false);
  test_support::WaitFor([] { return FrontendLog::Lines().size() == 2; });
  FrontendLog::Clear();
  tree.service->Deregister();
  tree.service->Deregister();
  EXPECT_EQ(tree.service->Register({UriOf("http://[::1]/")}), tree.service);
  EXPECT_EQ(FrontendLog::Lines(), (Lines{"withdraw S", "announce S at http://[::1]/"}));
}

TEST(Announcements, StopWithoutAStartIsHarmless) {
  Tree tree;
  EXPECT_FALSE(tree.server->Stop(true));
  EXPECT_TRUE(FrontendLog::Lines().empty());
}

TEST(Announcements, AServiceGivenAgainIsHeldOnce) {
  Tree tree;
  for (int i = 0; i != 3; ++i) tree.server->Add(tree.service);
  EXPECT_EQ(tree.server->GetServices().size(), 1U);
  const auto twin = ara::rest::MakeSharedPointer<ServerService>(ara::rest::Uuid{}, UriOf("/S"), "S");
  EXPECT_THROW(tree.server->Add(twin), ara::rest::InvalidArgumentException);
}

TEST(Announcements, AServiceOutlivesItsServer) {
  Tree tree;
  tree.server.reset();
  EXPECT_EQ(tree.service->Register({}), tree.service);
  EXPECT_TRUE(FrontendLog::Lines().empty());
}

}  // namespace
}  // namespace zuva::test
