#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "zuva/change_sink.h"
#include "zuva/container.h"
#include "zuva/server_element.h"
#include "zuva/x_object_endpoint.h"

namespace zuva {

/// A list of elements under one URI.
class ServerResource : public XObjectEndpoint, public Container<ServerElement> {
 public:
  using ElementList = Snapshot<ServerElement>;

  ServerResource(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name);

  /// Puts the element at the end of the list; it is reachable from then on, and told whole. One that is there already stays as it is.
  /// Throws `InvalidArgumentException` for a null pointer or for a URI whose last segment another element has.
  void Add(const std::shared_ptr<ServerElement>& element);
  /// Takes the element out that was added with this identifier; false if there is none.
  bool Remove(const ara::rest::Uuid& uuid);
  /// The elements in insertion order, at this instant.
  ElementList GetElements() const { return ElementList{GetList()->items}; }
  void SetDescription(const std::string& description);
  /// The framework does not call it: the identity has the field itself.
  virtual std::string GetDescription() const;

  // The framework calls none of the three.
  virtual std::shared_ptr<BaseXObject> FindByNameRecursive(const std::string& name) const;
  virtual std::shared_ptr<BaseXObject> FindByUuidRecursive(const std::string& uuid) const;
  virtual std::shared_ptr<BaseXObject> FindByUriRecursive(const std::string& uri) const;
  /// The framework calls neither of the two: a POST to a resource is not offered.
  virtual void OnPostQuery(const ara::rest::Uri& uri, const ogm::Object& object, ServerReply& reply);
  virtual std::shared_ptr<ServerElement> MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) = 0;

  XObjectType GetXObjectType() const noexcept override { return XObjectType::Resource; }
  ara::rest::Router GetRoutes() const override;
  void OnQuery(const Query& query, ServerReply& reply) override;

  /// The array of all elements' texts, made anew only if the list or an element changed since. I/O thread only.
  const std::shared_ptr<const Rendered>& Render();
  /// The array of those elements that the query takes, in the shape that it asks for. I/O thread only.
  std::shared_ptr<const Rendered> Render(const Query& query);

 private:
  friend class ServerElement;
  friend class ServerService;

  void SetChangeSink(std::shared_ptr<ChangeSink> sink);
  std::shared_ptr<ChangeSink> GetChangeSink() const;
  std::shared_ptr<ServerResource> Self() noexcept;
  void TellChanged(const std::shared_ptr<ServerElement>& element) noexcept;

  mutable std::mutex sinkMutex_;  // guards sink_; nothing is called under it
  std::shared_ptr<ChangeSink> sink_;
  std::shared_ptr<const Rendered> rendered_;  // I/O thread only
  std::uint64_t renderedGeneration_ = 0;      // I/O thread only
};

}  // namespace zuva
