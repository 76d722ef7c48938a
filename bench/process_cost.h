#pragma once

#include <sys/types.h>

namespace bench {

/// Time that all living threads of a process have had a CPU since they began. What others do on the machine hardly counts in it.
double CpuNanoseconds(pid_t process);

}  // namespace bench
