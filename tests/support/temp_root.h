#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace test_support {

/// A staging root of its own: a fresh directory with the program's two configuration files, and a discovery port that no other
/// test of this machine uses meanwhile. The directory goes with the object, unless a test that failed keeps it, or KEEP_TEST_ROOTS is set
/// in the environment.
class TempRoot {
 public:
  /// REST on 127.0.0.1, any free port; SOME/IP on loopback with the discovery port of this root.
  TempRoot();
  ~TempRoot();
  TempRoot(const TempRoot&) = delete;
  TempRoot& operator=(const TempRoot&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path LogPath() const { return path_ / "log"; }
  std::filesystem::path NotifyPath() const { return path_ / "notify"; }
  std::filesystem::path RestConfigPath() const;
  std::filesystem::path DeploymentPath() const;
  std::uint16_t DiscoveryPort() const { return discoveryPort_; }

  /// Leaves the directory where it is, and tells on standard error where.
  void Keep();

  /// Both replace the file as a whole; the text need not be JSON.
  void WriteRestConfig(std::string_view text) const;
  void WriteDeployment(std::string_view text) const;

  /// What the constructor wrote, to be changed and written again.
  nlohmann::json DefaultRestConfig() const;
  nlohmann::json DefaultDeployment() const;

 private:
  std::filesystem::path path_;
  bool kept_ = false;
  std::uint16_t discoveryPort_ = 0;
  int portReservation_ = -1;  // a bound TCP socket: the number is taken for other tests, its UDP side stays free for the program
};

}  // namespace test_support
