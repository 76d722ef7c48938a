#pragma once

#include <memory>
#include <utility>

namespace xr::com {
class static_thread_pool;
}

namespace xr::com::runtime {

/// Gives the one pool on which the strands of all events run.
class Thread_pool_factory {
 public:
  explicit Thread_pool_factory(std::shared_ptr<static_thread_pool> pool) : pool_{std::move(pool)} {}

  std::shared_ptr<static_thread_pool> pool() const { return pool_; }

 private:
  std::shared_ptr<static_thread_pool> pool_;
};

}  // namespace xr::com::runtime
