#include "serve/post_queue.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

#include <boost/asio/post.hpp>

#include "zuva/logger.h"

namespace zuva::serve {

PostQueue::PostQueue(boost::asio::io_context& io, RequestPool& pool, std::size_t longestQueue)
    : io_{io}, pool_{pool}, longestQueue_{longestQueue}, timer_{io} {
  taken_.reserve(pool.Size());
}

bool PostQueue::Submit(const void* resource, std::shared_ptr<PostTask> task, const void* turn) {
  const Place place{resource, turn};
  const bool startsNow = MayRun(place);  // nobody waits for this place then: a free one is filled at once
  if (closed_ || (!startsNow && waiting_.size() >= longestQueue_)) return false;
  Jobs job;
  job.push_back({place, std::move(task), std::chrono::steady_clock::now() + kLongestWait, std::nullopt});
  if (startsNow) {
    Start(job, job.begin());
    return true;
  }
  if (waiting_.empty()) {
    timer_.expires_at(job.front().deadline);
    ArmTimer();
  }
  waiting_.splice(waiting_.end(), job);
  return true;
}

void PostQueue::CatchUp() noexcept {
  Collect();
  RefuseLate();
}

void PostQueue::Close() noexcept {
  closed_ = true;
  timer_.cancel();
  for (auto& waiting : std::exchange(waiting_, {})) waiting.task->Refuse();
}

bool PostQueue::MayRun(const Place& place) const {
  if (taken_.size() >= pool_.Size()) return false;
  const auto sharesTurn = [&](const Place& taken) { return taken.turn == place.turn; };
  if (place.turn && std::any_of(taken_.begin(), taken_.end(), sharesTurn)) return false;
  const auto sharesResource = [&](const Place& taken) { return taken.resource == place.resource; };
  return static_cast<std::size_t>(std::count_if(taken_.begin(), taken_.end(), sharesResource)) < kPerResource;
}

/// If this throws the job is where it was.
void PostQueue::Start(Jobs& from, Jobs::iterator job) {
  const auto next = std::next(job);
  job->work.emplace(boost::asio::make_work_guard(io_));  // the I/O thread has work as long as an answer is to come
  {
    const std::lock_guard lock{mutex_};
    running_.splice(running_.end(), from, job);
  }
  try {
    pool_.Run([this, job] { Run(job); });
  } catch (...) {  // no memory
    const std::lock_guard lock{mutex_};
    from.splice(next, running_, job);
    job->work.reset();
    throw;
  }
  taken_.push_back(job->place);  // the job stays in one of the lists until this thread looks
}

void PostQueue::Run(Jobs::iterator job) noexcept {
  job->task->Run();
  // In the list until the I/O thread looks, so that a connection whose last owner the task is ends there. Posted under the lock, so that
  // no call comes after the job's work guard is gone.
  const std::lock_guard lock{mutex_};
  ended_.splice(ended_.end(), running_, job);
  try {
    boost::asio::post(io_, [this] { Collect(); });
  } catch (const std::exception& e) {  // no memory: the next `CatchUp` finds the job
    GetLogger().LogWarn() << "The end of a write is noticed late: " << e;
  }
}

void PostQueue::Collect() noexcept {
  Jobs ended;
  {
    const std::lock_guard lock{mutex_};
    ended.swap(ended_);
  }
  for (const auto& job : ended) taken_.erase(std::find(taken_.begin(), taken_.end(), job.place));
  StartWaiting();
  for (const auto& job : ended) job.task->Finish();
}

void PostQueue::StartWaiting() noexcept {
  const auto now = std::chrono::steady_clock::now();
  Jobs left;
  for (auto waiting = waiting_.begin(); waiting != waiting_.end() && taken_.size() < pool_.Size();) {
    const auto job = waiting++;
    if (job->deadline <= now || !MayRun(job->place)) continue;
    if (!job->task->IsWanted()) {
      left.splice(left.end(), waiting_, job);
      continue;
    }
    try {
      Start(waiting_, job);
    } catch (const std::exception& e) {  // no memory: it goes on waiting, as long as any other
      GetLogger().LogWarn() << "A write could not be started: " << e;
      break;
    }
  }
  for (const auto& job : left) job.task->Refuse();
}

/// The timer has its time already.
void PostQueue::ArmTimer() {
  timer_.async_wait([this, ticket = timing_.Begin()](const boost::system::error_code& error) mutable {
    ticket.reset();
    if (!error) RefuseLate();
  });
}

void PostQueue::RefuseLate() noexcept {
  const auto now = std::chrono::steady_clock::now();
  Jobs late;
  while (!waiting_.empty() && waiting_.front().deadline <= now) late.splice(late.end(), waiting_, waiting_.begin());
  if (!waiting_.empty() && !timing_.IsUnderWay()) {
    try {
      timer_.expires_at(waiting_.front().deadline);
      ArmTimer();
    } catch (const std::exception& e) {  // no memory: `CatchUp` comes here again
      GetLogger().LogWarn() << "A write that waits is refused late: " << e;
    }
  }
  for (const auto& job : late) job.task->Refuse();
}

}  // namespace zuva::serve
