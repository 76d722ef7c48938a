#include "serve/post_queue.h"

#include <iterator>
#include <utility>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>

namespace zuva::serve {

PostQueue::PostQueue(boost::asio::io_context& io, RequestPool& pool, std::size_t longestQueue)
    : io_{io}, pool_{pool}, longestQueue_{longestQueue}, timer_{io} {}

bool PostQueue::Submit(const void* resource, std::shared_ptr<PostTask> task) {
  if (closed_) return false;
  if (MayRun(resource)) {  // nobody of this resource waits then: a free place is filled at once
    Start(resource, std::move(task));
    return true;
  }
  if (waiting_.size() >= longestQueue_) return false;
  waiting_.push_back({resource, std::move(task), std::chrono::steady_clock::now() + kLongestWait});
  if (waiting_.size() == 1) ArmTimer();
  return true;
}

void PostQueue::Close() {
  closed_ = true;
  timer_.cancel();
  for (auto& waiting : std::exchange(waiting_, {})) waiting.task->Refuse();
}

bool PostQueue::MayRun(const void* resource) const {
  if (busyThreads_ >= pool_.Size()) return false;
  const auto running = running_.find(resource);
  return running == running_.end() || running->second < kPerResource;
}

void PostQueue::Start(const void* resource, std::shared_ptr<PostTask> task) {
  ++busyThreads_;
  ++running_[resource];
  // The I/O thread has work as long as an answer is to come.
  pool_.Run([this, resource, task = std::move(task), work = boost::asio::make_work_guard(io_)]() mutable {
    auto& running = *task;
    running.Run();
    // Moved, so that a connection whose last owner the task is ends on the I/O thread.
    boost::asio::post(io_, [this, resource, task = std::move(task)] { OnFinished(resource, *task); });
  });
}

void PostQueue::OnFinished(const void* resource, PostTask& task) {
  --busyThreads_;
  const auto running = running_.find(resource);
  if (--running->second == 0) running_.erase(running);
  StartWaiting();
  task.Finish();
}

void PostQueue::StartWaiting() {
  const auto now = std::chrono::steady_clock::now();
  std::list<Waiting> left;
  for (auto waiting = waiting_.begin(); waiting != waiting_.end() && busyThreads_ < pool_.Size();) {
    const auto next = std::next(waiting);
    if (waiting->deadline > now && MayRun(waiting->resource)) {
      if (waiting->task->IsWanted()) {
        Start(waiting->resource, std::move(waiting->task));
        waiting_.erase(waiting);
      } else {
        left.splice(left.end(), waiting_, waiting);
      }
    }
    waiting = next;
  }
  for (auto& waiting : left) waiting.task->Refuse();
}

void PostQueue::ArmTimer() {
  timer_.expires_at(waiting_.front().deadline);
  timer_.async_wait([this](const boost::system::error_code& error) {
    if (!error) RefuseLate();
  });
}

void PostQueue::RefuseLate() {
  const auto now = std::chrono::steady_clock::now();
  std::list<Waiting> late;
  while (!waiting_.empty() && waiting_.front().deadline <= now) late.splice(late.end(), waiting_, waiting_.begin());
  if (!waiting_.empty()) ArmTimer();
  for (auto& waiting : late) waiting.task->Refuse();
}

}  // namespace zuva::serve
