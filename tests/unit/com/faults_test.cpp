// What the client does when memory or sockets fail under its own threads: it serves again, whatever was hit.
#include <dlfcn.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <new>
#include <string_view>
#include <system_error>

#include "client_fixture.h"
#include "xr/com/exceptions.h"
#include "xr/com/runtime/component_singleton.h"

namespace {

thread_local bool spared = false;  // a thread whose own calls never fail

/// Which call fails, how many go well before, and how many fail then.
std::atomic<const char*> failing{""};
std::atomic<int> good{0};
std::atomic<int> bad{0};
std::atomic<int> failure{0};

bool fails(std::string_view call) {
  if (spared || call != failing.load()) return false;
  if (good.fetch_sub(1) > 0 || bad.fetch_sub(1) <= 0) return false;
  errno = failure;
  return true;
}

void fail(const char* call, int well_before, int times, int error = ENOMEM) {
  failing = "";
  good = well_before, bad = times, failure = error;
  failing = call;
}

template <class... Arguments>
long call(const char* name, long number, Arguments... arguments) {
  return fails(name) ? -1 : ::syscall(number, arguments...);
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = fails("memory") ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc{};
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

// In place of those of the C library.
extern "C" {
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  void* memory = nullptr;
  return fails("memory") || ::posix_memalign(&memory, alignment, size) != 0 ? nullptr : memory;
}
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
  static const auto real = reinterpret_cast<decltype(&::pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
  return fails("thread") ? EAGAIN : real(thread, attributes, run, argument);
}
#endif
int socket(int domain, int type, int protocol) noexcept {
  return static_cast<int>(call("socket", SYS_socket, domain, type, protocol));
}
int bind(int fd, const sockaddr* address, socklen_t size) noexcept {
  return static_cast<int>(call("bind", SYS_bind, fd, address, size));
}
int setsockopt(int fd, int level, int name, const void* value, socklen_t size) noexcept {
  return static_cast<int>(call("setsockopt", SYS_setsockopt, fd, level, name, value, size));
}
int connect(int fd, const sockaddr* address, socklen_t size) {
  return static_cast<int>(call("connect", SYS_connect, fd, address, size));
}
ssize_t sendmsg(int fd, const msghdr* message, int flags) {
  return call("sendmsg", SYS_sendmsg, fd, message, flags);
}
ssize_t recv(int fd, void* buffer, std::size_t room, int flags) {
  return call("recv", SYS_recvfrom, fd, buffer, room, flags, nullptr, nullptr);
}
ssize_t recvfrom(int fd, void* buffer, std::size_t room, int flags, sockaddr* from, socklen_t* size) {
  return call("recvfrom", SYS_recvfrom, fd, buffer, room, flags, from, size);
}
}

namespace com_test {
namespace {

using namespace xr::com::wire;

struct Faults : Client {
  Faults() { spared = true; }
  ~Faults() override { failing = ""; }

  void SetUp() override {}

  /// Whether, while the vehicle goes on offering, everything comes: notifications by a group and over TCP, and the answer to a call.
  bool serves(unsigned char round) {
    const Endpoint group{boost::asio::ip::make_address_v4("224.244.224.246"), deployment_.discovery.port, Protocol::udp};
    std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call> pending;
    auto repeat = std::chrono::steady_clock::now();  // an answer that found no memory is lost
    bool udp = false, tcp = false, answered = false;
    return test_support::WaitFor([&] {
      vehicle_.offer();
      if (!port_ && !lists_.empty()) {
        if (const auto list = lists_.next(); !list.empty()) begin(list.front());
      }
      vehicle_.serve({{Option_kind::multicast, group}});
      if (!port_) return false;
      vehicle_.send_stream(vehicle_.notification("valueControls", {round}));
      vehicle_.send_datagram(group, vehicle_.notification("views", {round}));
      while (!views_->payloads.empty()) udp |= views_->payloads.next() == Bytes{round};
      while (!controls_->payloads.empty()) tcp |= controls_->payloads.next() == Bytes{round};
      while (!replies_.empty()) answered |= replies_.next().payload == Bytes{round};
      if (!answered && std::chrono::steady_clock::now() >= repeat) {
        repeat += std::chrono::milliseconds{200};
        try {
          if (port_->is_available(get("valueControls"))) pending = call(get("valueControls"), {round});
        } catch (const xr::com::Infrastructure_exception&) {  // the connection has just ended
        }
      }
      return udp && tcp && answered;
    });
  }

  void begin(const xr::com::runtime::Service_instance& instance) {
    open(instance);
    views_ = subscribe("views");
    controls_ = subscribe("valueControls");
  }

  /// A loss and a return at other ports, after which everything must be made again.
  void expect_return(unsigned char round) {
    vehicle_.withdraw();
    vehicle_.move();
    ASSERT_TRUE(serves(round)) << failing << " after " << int{round};
  }

  std::shared_ptr<Recording_sink> views_, controls_;
};

TEST_F(Faults, EachAllocationMayFailInASessionAndItsReturns) {
  fail("memory", 3, 1);
  transport_->start();
  find();
  ASSERT_TRUE(serves(0));
  int round = 0;
  do {
    fail("memory", round, 1);
    expect_return(static_cast<unsigned char>(++round));
  } while (!HasFatalFailure() && bad <= 0 && round < 250);
  EXPECT_GT(round, 50);
  fail("memory", 2, 3);
  transport_->stop();
}

TEST_F(Faults, SocketsMayFail) {
  transport_->start();
  find();
  ASSERT_TRUE(serves(0));
  unsigned char round = 0;
  for (const auto* call : {"socket", "bind", "setsockopt", "connect", "sendmsg", "recv", "recvfrom"}) {
    for (const int error : {ENOBUFS, EMFILE, ENOMEM}) {
      fail(call, 0, 2, error);
      expect_return(++round);
      EXPECT_TRUE(test_support::WaitFor([] { return bad < 2; })) << call << " was not needed";
    }
  }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // which need the threads' creation for themselves
TEST_F(Faults, ARuntimeWithoutOneOfItsThreadsIsNotThere) {
  using xr::com::runtime::Component_singleton;
  ::setenv("ARA_ROOT", root_.Path().c_str(), 1);
  spared = false;
  for (int well_before = 0; well_before < 6; ++well_before) {
    fail("thread", well_before, 1);
    EXPECT_THROW((Component_singleton{false, ""}), std::system_error) << well_before;
    EXPECT_THROW(Component_singleton::get_service_finder(), std::logic_error) << well_before;
  }
  const Component_singleton singleton{false, ""};
}
#endif

TEST_F(Faults, WhatFailsOnACallersThreadMayBeRepeated) {
  transport_->start();
  const auto until_it_goes = [](const auto& step) {
    for (int well_before = 0;; ++well_before) {
      spared = false;
      fail("memory", well_before, 1);
      try {
        step();
        failing = "", spared = true;
        return;
      } catch (const std::bad_alloc&) {
        failing = "", spared = true;
      }
    }
  };
  until_it_goes([&] { find(); });
  vehicle_.offer();
  const auto list = lists_.next();
  ASSERT_EQ(list.size(), 1U);
  until_it_goes([&] { open(list.front()); });
  views_ = std::make_shared<Recording_sink>();
  controls_ = std::make_shared<Recording_sink>();
  until_it_goes([&] { port_->subscribe(index("views"), views_); });
  until_it_goes([&] { port_->subscribe(index("valueControls"), controls_); });
  EXPECT_TRUE(serves(1));
  std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call> pending;
  until_it_goes([&] { pending = port_->call(set("views"), std::make_shared<Bytes>(100, 1), [](const Reply&) {}); });
  until_it_goes([&] { pending = port_->call(set("valueControls"), std::make_shared<Bytes>(100, 1), [](const Reply&) {}); });
  EXPECT_TRUE(serves(2));
}

}  // namespace
}  // namespace com_test
