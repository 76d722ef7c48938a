#include "bench/stay_on.h"

#include <sched.h>

namespace bench {

void StayOn(unsigned cpu) {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(cpu, &set);
  ::sched_setaffinity(0, sizeof set, &set);
}

}  // namespace bench
