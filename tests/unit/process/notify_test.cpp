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

TEST(Notify, ASupervisionThatNobodyConfiguredHasNoAliveCheckpoint) {
  EXPECT_EQ(ara::phm::FindAliveSupervision("another process"), nullptr);
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
  EXPECT_THROW(application.ReportApplicationState(ApplicationState::kRunning), std::runtime_error);
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_NO_THROW(application.ReportApplicationState(ApplicationState::kRunning));
}

/// A service manager in the abstract namespace, which never reads on its own.
class MuteManager {
 public:
  MuteManager() : socket_{::socket(AF_UNIX, SOCK_DGRAM, 0)} {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, name_.data(), name_.size());
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name_.size());
    EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr*>(&address), size), 0);
    ::setenv("NOTIFY_SOCKET", ("@" + name_).c_str(), 1);
  }
  ~MuteManager() { ::close(socket_); }
  std::string Receive() const {
    char text[64];
    const auto size = ::recv(socket_, text, sizeof text, MSG_DONTWAIT);
    return {text, size > 0 ? static_cast<std::size_t>(size) : 0};
  }

 private:
  const std::string name_ = "notify-test-" + std::to_string(::getpid());
  const int socket_;
};

TEST(Notify, AFullAbstractSocketThrowsInsteadOfBlocking) {
  const MuteManager manager;
  const ApplicationClient application;
  application.ReportApplicationState(ApplicationState::kRunning);
  EXPECT_EQ(manager.Receive(), "READY=1");
  const auto flood = [&] {
    for (int i = 0; i < 1'000'000; ++i) application.ReportApplicationState(ApplicationState::kRunning);
  };
  EXPECT_THROW(flood(), std::runtime_error);
}

}  // namespace
