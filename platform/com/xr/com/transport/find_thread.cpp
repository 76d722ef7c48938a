#include "xr/com/transport/find_thread.h"

#include <exception>
#include <utility>

#include "ara/log/logging.h"
#include "os/thread.h"
#include "xr/com/loggers.h"

namespace xr::com::transport {
namespace {

bool same(const std::weak_ptr<Find>& one, const std::weak_ptr<Find>& other) {
  return !one.owner_before(other) && !other.owner_before(one);
}

}  // namespace

Find_thread::Find_thread() : thread_{os::StartThread("xr_find", [this] { run(); })} {}

Find_thread::~Find_thread() {
  stop();
}

void Find_thread::post(const std::shared_ptr<Find>& find, Instance_list list) {
  bool dropped = false;
  {
    const std::lock_guard lock{mutex_};
    if (stopping_) return;
    if (jobs_.size() >= kMaximumWaiting) dropped = drop_oldest_pair_locked();
    jobs_.push_back({find, std::move(list)});
  }
  changed_.notify_one();
  if (dropped) cpp_binding::logger().LogWarn() << "A find handler is slow: two changes of the list of instances were dropped";
}

void Find_thread::stop() {
  {
    const std::lock_guard lock{mutex_};
    stopping_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void Find_thread::run() {
  std::unique_lock lock{mutex_};
  for (;;) {
    changed_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (stopping_) return;
    auto job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    if (const auto find = job.find.lock()) {
      try {
        find->tell(std::move(job.list));
      } catch (const std::exception& e) {  // one application's failure must not end the finds of all
        cpp_binding::logger().LogError() << "A find handler of " << find->service() << " threw: " << e;
      }
    }
    lock.lock();
  }
}

/// Removes the oldest change that a later one of the same find follows, and that one. There is no pair only if many finds wait with one
/// change each, and then nothing may go.
bool Find_thread::drop_oldest_pair_locked() {
  for (std::size_t first = 0; first < jobs_.size(); ++first) {
    for (std::size_t second = first + 1; second < jobs_.size(); ++second) {
      if (!same(jobs_[first].find, jobs_[second].find)) continue;
      jobs_.erase(jobs_.begin() + static_cast<std::ptrdiff_t>(second));
      jobs_.erase(jobs_.begin() + static_cast<std::ptrdiff_t>(first));
      return true;
    }
  }
  return false;
}

}  // namespace xr::com::transport
