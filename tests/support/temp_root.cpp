#include "tests/support/temp_root.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace test_support {

namespace {

constexpr std::string_view kConfigFolder = "opt/TROV__PLNT5_Sys_Adaptive_01/etc";

std::filesystem::path MakeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "cmcXXXXXX").string();
  if (!::mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), "mkdtemp " + name);
  return name;
}

// Below the range from which the system gives ports, so that no socket of another program takes it later.
int ReservePort(std::uint16_t& port) {
  std::mt19937 random{std::random_device{}()};
  std::uniform_int_distribution<int> candidates{20000, 32000};
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) throw std::system_error(errno, std::generic_category(), "socket");
    port = static_cast<std::uint16_t>(candidates(random));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return socket;
    ::close(socket);
  }
  throw std::runtime_error("no free port for discovery");
}

void WriteFile(const std::filesystem::path& path, std::string_view text) {
  std::ofstream file{path, std::ios::binary | std::ios::trunc};
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

TempRoot::TempRoot()
    : path_{MakeFolder()}, kept_{std::getenv("KEEP_TEST_ROOTS") != nullptr}, portReservation_{ReservePort(discoveryPort_)} {
  std::filesystem::create_directories(path_ / kConfigFolder);
  WriteRestConfig(DefaultRestConfig().dump(1));
  WriteDeployment(DefaultDeployment().dump(1));
}

TempRoot::~TempRoot() {
  ::close(portReservation_);
  std::error_code ignored;  // a root that cannot be removed is the next boot's business, never a test's result
  if (!kept_) std::filesystem::remove_all(path_, ignored);
}

void TempRoot::Keep() {
  kept_ = true;
  std::cerr << "kept for a look: " << path_.string() << '\n';
}

std::filesystem::path TempRoot::RestConfigPath() const {
  return path_ / kConfigFolder / "charging_management_core_conf.json";
}
std::filesystem::path TempRoot::DeploymentPath() const {
  return path_ / kConfigFolder / "someip_deployment.json";
}

void TempRoot::WriteRestConfig(std::string_view text) const {
  WriteFile(RestConfigPath(), text);
}
void TempRoot::WriteDeployment(std::string_view text) const {
  WriteFile(DeploymentPath(), text);
}

nlohmann::json TempRoot::DefaultRestConfig() const {
  return {{"listen", nlohmann::json::array({{{"address", "127.0.0.1"}, {"port", 0}}})}};
}

nlohmann::json TempRoot::DefaultDeployment() const {
  return {{"serviceDiscovery", {{"port", discoveryPort_}}}};
}

}  // namespace test_support
