#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "ara/log/testing/capture.h"
#include "tests/support/http_client.h"
#include "tests/support/wait_for.h"
#include "tests/support/ws_client.h"
#include "zuva/server.h"

namespace zuva::serve::test {

namespace ogm = ara::rest::ogm;
using test_support::HttpClient;
using test_support::WaitFor;
using test_support::WsClient;

ara::rest::Uri UriOf(const std::string& text);

/// An element that may embed others, as the application's composites do.
class Thing final : public ServerElement {
 public:
  using ServerElement::ServerElement;
  void Embed(const std::string& property, const std::shared_ptr<Thing>& object);
  ara::rest::Pointer<ogm::Object> ToOGM() const override;
  void Set(std::string_view field, std::string value) { SetFieldValue<ogm::String>(field, std::move(value)); }
  std::string Path() const { return GetUri().ToString(); }
};

class Things final : public ServerResource {
 public:
  explicit Things(const std::string& path);
  std::shared_ptr<ServerElement> MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) override;
  /// Makes an element of this type, to be added or not.
  std::shared_ptr<Thing> MakeThing(const std::string& type) const;
  std::shared_ptr<Thing> AddThing(const std::string& type);
};

/// Holds callbacks up until it is opened, so that a test decides when they end.
class Gate {
 public:
  ~Gate() { Open(); }
  void Open();
  void Pass();                         ///< by the callback; waits
  bool WaitForGuests(unsigned count);  ///< until so many have come
  unsigned Guests() const;

 private:
  mutable std::mutex mutex_;  // guards the two below
  bool open_ = false;
  unsigned guests_ = 0;
  std::condition_variable changed_;
};

/// A directory of its own as the staging root of this process.
class StagingRoot {
 public:
  StagingRoot();
  ~StagingRoot();
  StagingRoot(const StagingRoot&) = delete;
  StagingRoot& operator=(const StagingRoot&) = delete;
  void Write(std::string_view config) const { WriteFile(kConfig, config); }
  /// Writes a file below the root; the folders on the way are made. The path begins with a slash.
  void WriteFile(std::string_view path, std::string_view content) const;
  const std::filesystem::path& Path() const { return path_; }

  static constexpr const char* kConfig = "/serve.json";  ///< as the server is given it

 private:
  std::filesystem::path path_;
};

/// Files below the staging root that are there before the server is made: path and content.
using Files = std::vector<std::pair<std::string, std::string>>;

/// The service "/S" and its resources "/S/things" and "/S/others", in a server that listens on a free port of 127.0.0.1 once started.
class TestTree {
 public:
  /// `settings` are merged over the address to listen on; a sink takes the place of the server's own.
  explicit TestTree(nlohmann::json settings = nlohmann::json::object(), std::shared_ptr<ChangeSink> sink = nullptr,
                    const Files& files = {});

  ara::log::testing::Capture capture;
  StagingRoot root;
  std::shared_ptr<Things> things;
  std::shared_ptr<Things> others;
  std::shared_ptr<Server> server;
};

/// The statuses of answers that came one after another.
std::vector<std::string> Codes(std::string_view answers);

/// The same, started.
class ServedTree : public TestTree {
 public:
  explicit ServedTree(nlohmann::json settings = nlohmann::json::object(), const Files& files = {});
  void Restart();  ///< after a stop
  /// Where it listens on this address, as URIs have it; 0: nowhere.
  std::uint16_t PortOf(const std::string& host) const;

  HttpClient Http() const { return {"127.0.0.1", port}; }
  WsClient Socket(std::string_view path = "/", const test_support::Headers& headers = {}) const {
    return {"127.0.0.1", port, path, headers};
  }
  /// Lets clients write the element: what the gate lets pass is accepted.
  static void Guard(Thing& thing, std::shared_ptr<Gate> gate);
  /// Whether a line with this text was logged.
  bool Logged(std::string_view text) const;

  std::uint16_t port = 0;
};

}  // namespace zuva::serve::test
