// A library to be loaded before all others (LD_PRELOAD) into a program whose calls are to fail. Set in its environment:
//   FAULT_CALL    what fails: "allocation", or one of the system calls below by its name
//   FAULT_AT      which one of these calls of the process, counted from 1; with FAULT_WAITS set, from SIGUSR1 on
//   FAULT_TIMES   how many fail from there on; 1 if absent
//   FAULT_ERRNO   the error of a system call
// Each call that fails leaves a line and the stack on standard error, the signal and the end of the process a line.

#include <dlfcn.h>
#include <execinfo.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

namespace {

std::atomic<unsigned long> calls{0};
std::atomic<bool> waits{false};

unsigned long Number(const char* name, unsigned long otherwise) {
  const char* const text = std::getenv(name);
  return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

void Tell(const char* what, unsigned long number) {
  std::array<char, 96> text;
  const auto size = std::snprintf(text.data(), text.size(), "fault injection: %s %lu\n", what, number);
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), static_cast<std::size_t>(size));
}

/// What the environment asks for, read once: before main, since the first calls come early.
struct Plan {
  std::string_view call = std::getenv("FAULT_CALL") ? std::getenv("FAULT_CALL") : "";
  unsigned long at = Number("FAULT_AT", 0), times = Number("FAULT_TIMES", 1);
  int error = static_cast<int>(Number("FAULT_ERRNO", ENOMEM));
};
const Plan& ThePlan() {
  static const Plan plan;
  return plan;
}

bool Fails(std::string_view call) {
  const auto& plan = ThePlan();
  if (plan.call != call || waits) return false;
  const auto number = ++calls;
  if (number < plan.at || number >= plan.at + plan.times) return false;
  Tell("failing call", number);
  std::array<void*, 48> stack;
  ::backtrace_symbols_fd(stack.data(), ::backtrace(stack.data(), stack.size()), STDERR_FILENO);
  errno = plan.error;
  return true;
}

[[gnu::constructor]] void Prepare() {
  std::array<void*, 1> stack;
  ::backtrace(stack.data(), stack.size());  // whose first call loads a library
  if (ThePlan().call.empty() || !std::getenv("FAULT_WAITS")) return;
  waits = true;
  std::signal(SIGUSR1, [](int) {
    waits = false;
    Tell("counting from", 1);
  });
}
[[gnu::destructor]] void TellTheEnd() {
  Tell("calls in all", calls);
}

template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void* Allocated(std::size_t size) {
  return Fails("allocation") ? nullptr : std::malloc(size ? size : 1);
}
void* Allocated(std::size_t size, std::align_val_t alignment) {
  void* memory = nullptr;
  return Fails("allocation") || ::posix_memalign(&memory, static_cast<std::size_t>(alignment), size) != 0 ? nullptr : memory;
}
void* OrThrow(void* memory) {
  if (!memory) throw std::bad_alloc{};
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return OrThrow(Allocated(size));
}
void* operator new[](std::size_t size) {
  return OrThrow(Allocated(size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return OrThrow(Allocated(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return OrThrow(Allocated(size, alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocated(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocated(size);
}

extern "C" {

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  static auto* const real = Real<void*(std::size_t, std::size_t)>("aligned_alloc");
  return Fails("allocation") ? nullptr : real(alignment, size);
}

// clang-format off
#define FAILING(name, parameters, ...)                                    \
  int name parameters {                                                   \
    static auto* const real = Real<int parameters>(#name);                \
    return Fails(#name) ? -1 : real(__VA_ARGS__);                         \
  }
#define FAILING_TRANSFER(name, parameters, ...)                           \
  ssize_t name parameters {                                               \
    static auto* const real = Real<ssize_t parameters>(#name);            \
    return Fails(#name) ? -1 : real(__VA_ARGS__);                         \
  }
FAILING(socket, (int domain, int type, int protocol) noexcept, domain, type, protocol)
FAILING(bind, (int socket, const sockaddr* address, socklen_t size) noexcept, socket, address, size)
FAILING(connect, (int socket, const sockaddr* address, socklen_t size), socket, address, size)
FAILING(accept, (int socket, sockaddr* address, socklen_t* size), socket, address, size)
FAILING(accept4, (int socket, sockaddr* address, socklen_t* size, int flags), socket, address, size, flags)
FAILING(setsockopt, (int socket, int level, int name, const void* value, socklen_t size) noexcept, socket, level, name, value, size)
FAILING(timerfd_create, (clockid_t clock, int flags) noexcept, clock, flags)
FAILING(eventfd, (unsigned count, int flags) noexcept, count, flags)
FAILING_TRANSFER(send, (int socket, const void* bytes, std::size_t size, int flags), socket, bytes, size, flags)
FAILING_TRANSFER(sendto, (int socket, const void* bytes, std::size_t size, int flags, const sockaddr* to, socklen_t length), socket, bytes, size, flags, to, length)
FAILING_TRANSFER(sendmsg, (int socket, const msghdr* message, int flags), socket, message, flags)
FAILING_TRANSFER(recv, (int socket, void* bytes, std::size_t size, int flags), socket, bytes, size, flags)
FAILING_TRANSFER(recvfrom, (int socket, void* bytes, std::size_t size, int flags, sockaddr* from, socklen_t* length), socket, bytes, size, flags, from, length)
FAILING_TRANSFER(recvmsg, (int socket, msghdr* message, int flags), socket, message, flags)
// clang-format on

/// Only what adds a file takes memory; a change that failed would lose a wake-up inside the libraries, which no system does.
int epoll_ctl(int poll, int operation, int file, epoll_event* event) noexcept {
  static auto* const real = Real<int(int, int, int, epoll_event*)>("epoll_ctl");
  return operation == EPOLL_CTL_ADD && Fails("epoll_ctl") ? -1 : real(poll, operation, file, event);
}
}
