#include "tools/vehicle/command_line.h"

#include "tools/vehicle/values/bad_input.h"

#include <charconv>

namespace vehicle {

namespace {

double ParseSpeed(const std::string& text) {
  double speed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), speed);
  if (error != std::errc{} || end != text.data() + text.size() || !(speed >= 0.001 && speed <= 1000))
    throw BadInput{"--speed is a number from 0.001 to 1000, not " + text};
  return speed;
}

}  // namespace

Options ParseCommandLine(const std::vector<std::string>& arguments) {
  Options options;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const auto value = [&]() -> const std::string& {
      const auto& name = *argument;
      if (++argument == arguments.end()) throw BadInput{name + " needs a value"};
      return *argument;
    };
    if (*argument == "--address") {
      options.address = value();
    } else if (*argument == "--deployment") {
      options.deployment = value();
    } else if (*argument == "--scenario") {
      options.scenario = value();
    } else if (*argument == "--speed") {
      options.speed = ParseSpeed(value());
    } else if (*argument == "--verbose") {
      options.verbose = true;
    } else if (*argument == "--help") {
      options.help = true;
    } else {
      throw BadInput{"unknown argument " + *argument + "; --help lists what there is"};
    }
  }
  return options;
}

std::string Usage() {
  return R"(The simulated vehicle: offers both charging services over SOME/IP and plays a scenario.

  vehicle [--address IPV4] [--deployment FILE] [--scenario FILE|NAME] [--speed N] [--verbose]

  --address     own address, 127.0.0.2 if not given; each participant on one host needs one of its own
  --deployment  ids, discovery group and port, in the format of the bridge's someip_deployment.json
  --scenario    a JSON file, or the name of a built-in scenario; "default" if not given
  --speed       plays the scenario's time line N times as fast
  --verbose     tells on standard error what happens (otherwise where ARA_LOG says, if it is set)

Standard output has one JSON object per line for each thing that happens. Standard input takes one command per line:
  {"set":{"views":[{"type":"popup","content":"chargingInformationScreen","visibility":"newRequest"}]}}
  {"fault":{"views":{"set":"silent","get":{"error":32,"delay":0.5},"subscribe":"nack"}}}    {"fault":"none"}
  {"stopOffer":"ChargingManagementCore"}    {"offer":true}    {"breakTcp":true}    {"crash":true}    {"quit":true}
  {"repeat":{"valueIndications":{"record":{"type":"chargingProcessInformationCurrentSoc"},"counter":"currentValue","times":9000,"perSecond":300}}}
  {"payload":{"views":"00 00 00 02 ff ff"}}    {"message":{"views":"63 10 …"}}    {"discovery":"ff ff 81 00 …"}
)";
}

}  // namespace vehicle
