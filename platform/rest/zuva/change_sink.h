#pragma once

#include <memory>
#include <string>

#include "ara/rest/ogm.h"

namespace zuva {

namespace ogm = ara::rest::ogm;

class ServerElement;
class ServerResource;

/// Where changes of the tree are told. Called on any thread, with the object or the resource's list locked: an implementation
/// only puts the change into a queue under a lock of its own, which comes last in the order of locks, and wakes its thread.
/// The calls of one element come in order, and none comes between its `Removed` and its next `Added`.
/// No call throws: the tree has changed already, and a `ChangeScope` publishes while it ends. What cannot be kept for want of memory
/// makes the subscribers start anew.
class ChangeSink {
 public:
  virtual ~ChangeSink() = default;

  /// The element is in the list from now on: its path, its tree, and the tree's JSON text at that moment.
  virtual void Added(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element, std::string path,
                     std::shared_ptr<const ogm::Object> tree, std::string text) noexcept = 0;
  /// The element's tree changed; to be read when it is told. One call for each outermost `ChangeScope`.
  virtual void Changed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element) noexcept = 0;
  /// The element is out of the list. The path is the one of its `Added`.
  virtual void Removed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element,
                       std::string path) noexcept = 0;
};

}  // namespace zuva
