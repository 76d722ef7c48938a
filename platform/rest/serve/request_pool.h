#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace zuva::serve {

/// The request threads: each takes the next piece of work and runs it. Whoever hands work over sees to it that no more of it is under
/// way than there are threads, so nothing waits here for long.
class RequestPool {
 public:
  /// Throws `std::system_error` if the threads cannot be started; those that could are joined again.
  explicit RequestPool(std::size_t threads);
  /// Joins.
  ~RequestPool();
  RequestPool(const RequestPool&) = delete;
  RequestPool& operator=(const RequestPool&) = delete;

  std::size_t Size() const { return threads_.size(); }
  /// Any thread. `work` must not throw. Throws `std::bad_alloc`, and the work is not taken then.
  void Run(std::function<void()> work);
  /// Lets the work that was handed over end, then joins. Not from a request thread; again is harmless.
  void Stop();

 private:
  void Loop();

  std::mutex mutex_;  // guards the next two
  std::deque<std::function<void()>> work_;
  bool stopping_ = false;
  std::condition_variable wake_;
  std::vector<std::thread> threads_;
};

}  // namespace zuva::serve
