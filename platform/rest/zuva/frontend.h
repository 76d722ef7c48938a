#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zuva {

class Server;
class ServerService;

/// What serves a tree to clients: sockets, protocols, threads, and the registry.
class Frontend {
 public:
  virtual ~Frontend() = default;

  /// Begins to serve and returns; throws if it can't serve at all.
  virtual void Start() = 0;
  /// Ends the serving, waits for callbacks that run, and joins every thread of its own. Harmless without a start and when repeated.
  virtual void Stop() = 0;
  /// Tells the registry of a service; an empty list stands for the frontend's own addresses. Any thread, one call at a time for a
  /// service; bounded in time; a failure is logged and changes nothing.
  virtual void Announce(ServerService& service, std::vector<std::string> uris) = 0;
  virtual void Withdraw(ServerService& service) = 0;
};

/// Reads the configuration file and makes the frontend for a tree that is still being constructed: of the tree only `SetChangeSink` may
/// be called here. Throws, after one error line that names file and reason, if the file is missing or wrong.
std::unique_ptr<Frontend> MakeFrontend(Server& tree, const std::string& configPath);

}  // namespace zuva
