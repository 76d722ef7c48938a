// Logs to the DLT daemon and lives on until its standard input ends or says something, so that a test can ask the daemon about it.

#include "ara/log/logging.h"

#include <csignal>
#include <iostream>
#include <string>

int main() {
  ara::log::InitLogging("TROV", "TROV Application", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
  ara::log::CreateLogger("TROV_MAIN", "main").LogInfo() << "hello " << 42;
  ara::log::CreateLogger("TROV", "Charging Management Core zuva").LogWarn() << std::string(1024, 'x') << std::string(358, 'x') << "y\u00fc";
  ara::log::CreateLogger("TROV", "Charging Management Core proxy").LogError() << "two\nlines";
  struct sigaction pipe {};
  ::sigaction(SIGPIPE, nullptr, &pipe);
  if (pipe.sa_handler != SIG_DFL) ara::log::LogFatal() << "SIGPIPE is changed";
  std::string line;
  std::getline(std::cin, line);
}
