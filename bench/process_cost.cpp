#include "bench/process_cost.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace bench {

double CpuNanoseconds(pid_t process) {
  double sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator{"/proc/" + std::to_string(process) + "/task"}) {
    double onCpu = 0;
    std::ifstream{thread.path() / "schedstat"} >> onCpu;
    sum += onCpu;
  }
  return sum;
}

}  // namespace bench
