#pragma once

#include <sys/types.h>

#include <functional>

namespace bench {

/// A process that runs one function: the other side of a floor, so that floor and road have as many processes. Forked, so it is to be
/// made before the benchmark starts a thread. It dies with the object, or with the benchmark.
class Child {
 public:
  explicit Child(const std::function<void()>& work);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Pid() const { return pid_; }

 private:
  pid_t pid_;
};

}  // namespace bench
