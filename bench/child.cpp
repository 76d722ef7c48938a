#include "bench/child.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <system_error>

namespace bench {

Child::Child(const std::function<void()>& work) : pid_{::fork()} {
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ > 0) return;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  try {
    work();
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "the other side of a floor: %s\n", error.what()));
  }
  ::_exit(1);  // the benchmark's objects are not this process's to end
}

Child::~Child() {
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

}  // namespace bench
