#include "tools/vehicle/restart.h"

#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace vehicle {

void RestartProcess() {
  std::ifstream file{"/proc/self/cmdline", std::ios::binary};
  std::string line{std::istreambuf_iterator<char>{file}, {}};  // each argument ends in a zero byte
  std::vector<char*> arguments;
  for (std::size_t at = 0; at < line.size(); at = line.find('\0', at) + 1) arguments.push_back(&line[at]);
  arguments.push_back(nullptr);
  ::closefrom(STDERR_FILENO + 1);
  ::execv("/proc/self/exe", arguments.data());
  throw std::system_error{errno, std::generic_category(), "the vehicle cannot begin anew"};
}

}  // namespace vehicle
