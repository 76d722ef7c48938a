#include "bench/process_cost.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
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

double ResidentMegabytes(pid_t process) {
  std::ifstream status{"/proc/" + std::to_string(process) + "/status"};
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes / 1024;
  }
  throw std::runtime_error("no resident memory in the process's status");
}

}  // namespace bench
