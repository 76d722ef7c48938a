// Logs to the DLT daemon and lives on, so that a test can ask the daemon about it: for each line of its standard input it logs one at
// debug and prints the levels of its loggers. Ends with its input, or at "end".

#include "ara/log/logging.h"

#include <csignal>
#include <iostream>
#include <string>

int main() {
  ara::log::InitLogging("TROV", "TROV Application", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
  const auto& main = ara::log::CreateLogger("TROV_MAIN", "main");
  main.LogInfo() << "hello " << 42;
  const auto& zuva = ara::log::CreateLogger("TROV", "Charging Management Core zuva");
  zuva.LogWarn() << std::string(1024, 'x') << std::string(358, 'x') << "y\u00fc";
  ara::log::CreateLogger("TROV", "Charging Management Core proxy").LogError() << "two\nlines";
  const auto& silent = ara::log::CreateLogger("SLNT", "has nothing to say at info");
  struct sigaction pipe {};
  ::sigaction(SIGPIPE, nullptr, &pipe);
  if (pipe.sa_handler != SIG_DFL) ara::log::LogFatal() << "SIGPIPE is changed";
  for (std::string line; std::getline(std::cin, line) && line != "end";) {
    zuva.LogDebug() << line;
    for (const auto* const logger : {&main, &zuva, &silent}) std::cout << static_cast<int>(logger->Level());
    std::cout << std::endl;
  }
}
