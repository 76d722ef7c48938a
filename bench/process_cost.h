#pragma once

#include "bench/measure.h"

#include <sys/types.h>

#include <vector>

namespace bench {

/// Time that all living threads of a process have had a CPU since they began. What others do on the machine hardly counts in it.
double CpuNanoseconds(pid_t process);

/// What each piece of work cost a process, turn by turn. The figure is the median turn.
class CpuTurns {
 public:
  /// `work` gives the number of pieces that it was.
  template <class Work>
  void Add(pid_t process, Work&& work) {
    const double before = CpuNanoseconds(process);
    const auto pieces = static_cast<double>(work());
    microseconds_.push_back((CpuNanoseconds(process) - before) / 1000 / pieces);
  }
  double Microseconds() const { return QuantilesOf(microseconds_).median; }

 private:
  std::vector<double> microseconds_;
};

}  // namespace bench
