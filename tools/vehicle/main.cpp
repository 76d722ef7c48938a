#include "tools/vehicle/command_input.h"
#include "tools/vehicle/command_line.h"
#include "tools/vehicle/vehicle.h"

#include <unistd.h>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <cstdlib>
#include <iostream>

namespace {

void StartLog(bool verbose) {
  if (verbose) ::setenv("ARA_LOG", "console", 0);
  if (std::getenv("ARA_LOG")) ara::log::InitLogging("VHCL", "Simulated vehicle", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
}

xr::com::wire::Deployment ReadDeployment(const std::optional<std::string>& file) {
  if (!file) return xr::com::wire::default_deployment();
  try {
    return xr::com::wire::load_deployment(*file);
  } catch (const xr::com::wire::Deployment_error& error) {
    throw vehicle::BadInput{*file + ": " + error.what()};
  }
}

boost::asio::ip::address_v4 ParseAddress(const std::string& text) {
  boost::system::error_code error;
  const auto address = boost::asio::ip::make_address_v4(text, error);
  if (error) throw vehicle::BadInput{"--address is an IPv4 address, not " + text};
  return address;
}

int Run(const vehicle::Options& options) {
  const auto deployment = ReadDeployment(options.deployment);
  const auto address = ParseAddress(options.address);
  const auto scenario = vehicle::LoadScenario(options.scenario);

  StartLog(options.verbose);
  vehicle::Reporter reporter{std::cout};
  boost::asio::io_context context{1};
  boost::asio::signal_set signals{context, SIGINT, SIGTERM};
  vehicle::Vehicle vehicle{context, deployment, address, scenario, options.speed, reporter};
  vehicle::CommandInput commands{context, STDIN_FILENO, [&](const std::string& line) { vehicle.Command(line); }};
  signals.async_wait([&](auto error, int) {
    if (!error) vehicle.Stop();
  });
  vehicle.Start();
  context.run();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) try {
  std::signal(SIGPIPE, SIG_IGN);  // whoever reads the events may go away; the vehicle stays
  const auto options = vehicle::ParseCommandLine({arguments + 1, arguments + count});
  if (options.help) {
    std::cout << vehicle::Usage();
    return EXIT_SUCCESS;
  }
  return Run(options);
} catch (const std::exception& error) {
  std::cerr << "vehicle: " << error.what() << '\n';
  return EXIT_FAILURE;
}
