#include "ara/exec/application_client.h"
#include "ara/phm/health_channel.h"
#include "ara/phm/phm_client.h"
#include "ara/phm/supervision_entity.h"
#include "tests/support/notify_socket.h"
#include "tests/support/temp_root.h"
#include "tests/support/wait_for.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ara::exec::ApplicationClient;
using ara::exec::ApplicationState;
using testing::ElementsAre;

/// Each kind of report once.
void ReportAll() {
  const ApplicationClient application;
  const ara::phm::Phm_client client{"TROV__PLNT5_Sys_Adaptive_01"};
  const ara::phm::SupervisionEntity supervision{client};
  application.ReportApplicationState(ApplicationState::kRunning);
  supervision.CheckpointReached(60071, 60075);
  supervision.CheckpointReached(60071, 60071);
  ara::phm::HealthChannel{client}.SetHealthMode(1, 2);
  application.ReportApplicationState(ApplicationState::kTerminating);
}

TEST(Notify, ReportsAreAssignmentsOfTheNotifyProtocol) {
  const test_support::TempRoot root;
  const test_support::NotifySocket serviceManager{root.NotifyPath()};
  ::setenv("NOTIFY_SOCKET", root.NotifyPath().c_str(), 1);
  ReportAll();
  ASSERT_TRUE(test_support::WaitFor([&] { return serviceManager.Notices().size() == 5; }));
  std::vector<std::string> texts;
  for (const auto& notice : serviceManager.Notices()) texts.push_back(notice.text);
  EXPECT_THAT(texts, ElementsAre("READY=1", "WATCHDOG=1", "STATUS=Supervision 60071 reached checkpoint 60071",
                                 "STATUS=Health channel 1 is in mode 2", "STOPPING=1"));
}

TEST(Notify, WithoutAServiceManagerNothingIsSentAndNothingFails) {
  ::unsetenv("NOTIFY_SOCKET");
  EXPECT_NO_THROW(ReportAll());
}

TEST(Notify, WhatCannotBeSentThrowsAndNamesTheAddress) {
  const std::string tooLong = "/" + std::string(200, 'x');
  for (const std::string& address :
       {std::string{"/nonexistent/notify"}, std::string{"relative"}, std::string{"@nobody-listens-here"}, tooLong}) {
    ::setenv("NOTIFY_SOCKET", address.c_str(), 1);
    try {
      ReportAll();
      ADD_FAILURE() << address;
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(address));
    }
  }
}

TEST(Notify, ASocketThatTheSystemRefusesIsAskedForAgain) {
  const test_support::TempRoot root;
  const test_support::NotifySocket serviceManager{root.NotifyPath()};
  ::setenv("NOTIFY_SOCKET", root.NotifyPath().c_str(), 1);
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  const ApplicationClient application;
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_NO_THROW(application.ReportApplicationState(ApplicationState::kRunning));
}

TEST(Notify, AFullAbstractSocketThrowsInsteadOfBlocking) {
  const std::string name = "notify-test-" + std::to_string(::getpid());
  const int manager = ::socket(AF_UNIX, SOCK_DGRAM, 0);  // never reads on its own
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path + 1, name.data(), name.size());
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  ASSERT_EQ(::bind(manager, reinterpret_cast<sockaddr*>(&address), size), 0);
  ::setenv("NOTIFY_SOCKET", ("@" + name).c_str(), 1);
  const ApplicationClient application;
  const auto flood = [&] {
    for (int i = 0; i < 1'000'000; ++i) application.ReportApplicationState(ApplicationState::kRunning);
  };
  EXPECT_THROW(flood(), std::runtime_error);
  char first[64];
  EXPECT_EQ(std::string(first, static_cast<std::size_t>(::recv(manager, first, sizeof first, MSG_DONTWAIT))), "READY=1");
  ::close(manager);
}

}  // namespace
