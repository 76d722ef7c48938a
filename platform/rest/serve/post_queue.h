#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "serve/pending.h"
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
/// mute about one resource starves no other, and one at a time of those that share a turn. What has waited too long, whose client has left
/// meanwhile, or what finds the queue full, is refused unrun.
/// Used on the I/O thread alone.
class PostQueue {
 public:
  static constexpr std::size_t kPerResource = 2;
  static constexpr std::chrono::milliseconds kLongestWait{1000};

  PostQueue(boost::asio::io_context& io, RequestPool& pool, std::size_t longestQueue);

  /// False if the task is refused at once; it is not called then, nor if this throws for want of memory. `resource` and `turn` only tell
  /// which writes belong together; null is no turn.
  bool Submit(const void* resource, std::shared_ptr<PostTask> task, const void* turn = nullptr);
  /// Does what is due, even where an earlier attempt failed for want of memory. To be called now and then as long as it is not idle.
  void CatchUp() noexcept;
  /// Refuses what waits and all that comes later; what runs goes on.
  void Close() noexcept;
  /// Whether nothing runs and nothing waits.
  bool IsIdle() const { return taken_.empty() && waiting_.empty(); }

 private:
  /// What must be exclusive to some extent while a task is under way.
  struct Place {
    const void* resource;
    const void* turn;
    friend bool operator==(const Place&, const Place&) = default;
  };
  struct Job {
    Place place;
    std::shared_ptr<PostTask> task;
    std::chrono::steady_clock::time_point deadline;
    std::optional<boost::asio::executor_work_guard<boost::asio::io_context::executor_type>> work;  // once it is under way
  };
  using Jobs = std::list<Job>;  // a job moves from list to list without allocation

  bool MayRun(const Place& place) const;
  void Start(Jobs& from, Jobs::iterator job);
  void Run(Jobs::iterator job) noexcept;
  void Collect() noexcept;
  void StartWaiting() noexcept;
  void ArmTimer();
  void RefuseLate() noexcept;

  boost::asio::io_context& io_;
  RequestPool& pool_;
  const std::size_t longestQueue_;
  bool closed_ = false;
  std::vector<Place> taken_;  // by the tasks under way; has room for as many as there are threads
  Jobs waiting_;              // in order of arrival, which is that of the deadlines
  boost::asio::steady_timer timer_;
  Pending timing_;

  std::mutex mutex_;  // guards the two below, which the request threads share
  Jobs running_;
  Jobs ended_;
};

}  // namespace zuva::serve
