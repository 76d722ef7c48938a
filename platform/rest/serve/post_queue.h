#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <unordered_map>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "serve/request_pool.h"

namespace zuva::serve {

/// A client's write on its way through a request thread.
class PostTask {
 public:
  virtual ~PostTask() = default;
  /// On the I/O thread, after it has waited: false if its client has left.
  virtual bool IsWanted() const noexcept = 0;
  virtual void Run() noexcept = 0;     ///< on a request thread
  virtual void Finish() noexcept = 0;  ///< on the I/O thread, after Run
  virtual void Refuse() noexcept = 0;  ///< on the I/O thread, in place of both, after it has waited
};

/// Decides which writes get a request thread: in order of arrival, but at most two of one resource at a time, so that a vehicle that is
/// mute about one resource starves no other. What has waited too long, whose client has left meanwhile, or what finds the queue full, is
/// refused unrun.
/// Used on the I/O thread alone.
class PostQueue {
 public:
  static constexpr std::size_t kPerResource = 2;
  static constexpr std::chrono::milliseconds kLongestWait{1000};

  PostQueue(boost::asio::io_context& io, RequestPool& pool, std::size_t longestQueue);

  /// False if the task is refused at once; it is not called then. `resource` only tells which writes belong together.
  bool Submit(const void* resource, std::shared_ptr<PostTask> task);
  /// Refuses what waits and all that comes later; what runs goes on.
  void Close();
  /// Whether nothing runs and nothing waits.
  bool IsIdle() const { return busyThreads_ == 0 && waiting_.empty(); }

 private:
  struct Waiting {
    const void* resource;
    std::shared_ptr<PostTask> task;
    std::chrono::steady_clock::time_point deadline;
  };

  bool MayRun(const void* resource) const;
  void Start(const void* resource, std::shared_ptr<PostTask> task);
  void OnFinished(const void* resource, PostTask& task);
  void StartWaiting();
  void ArmTimer();
  void RefuseLate();

  boost::asio::io_context& io_;
  RequestPool& pool_;
  const std::size_t longestQueue_;
  bool closed_ = false;
  std::size_t busyThreads_ = 0;
  std::unordered_map<const void*, std::size_t> running_;  // by resource; no entry is none
  std::list<Waiting> waiting_;                            // in order of arrival, which is that of the deadlines
  boost::asio::steady_timer timer_;
};

}  // namespace zuva::serve
