#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zuva/x_object_endpoint.h"

namespace zuva {

class ServerResource;

/// An element of a resource's list: what clients read, write and subscribe to.
class ServerElement : public XObjectEndpoint {
 public:
  using Embedded = std::pair<std::string, std::shared_ptr<ServerElement>>;  ///< property, object

  using XObjectEndpoint::XObjectEndpoint;

  XObjectType GetXObjectType() const noexcept override { return XObjectType::Element; }
  void OnPost(const Request& request, ServerReply& reply, const ara::rest::Matches& matches) override;
  void OnQuery(const Query& query, ServerReply& reply) override;
  void OnUpdate(const ogm::Object& object, ServerReply& reply) override;
  /// The framework does not call it.
  virtual void OnDeleteFields(const ara::rest::Uri& uri, ServerReply& reply);
  std::string_view AllowedMethods() const override;

  /// Its own and those of the embedded objects: each only grows, so an equal sum means that nothing changed.
  std::uint64_t ContentVersion() const noexcept override;
  /// The element's text, made anew only if its content changed since. I/O thread only.
  const std::shared_ptr<const Rendered>& Render();

 protected:
  /// Objects whose live trees this one shows. Filled before the element is added to its resource and never changed after, so it
  /// is read without a lock.
  const std::vector<Embedded>& GetEmbedded() const noexcept { return embedded_; }
  /// Keeps an embedded object under its property; the last one given counts.
  void KeepEmbedded(std::string property, std::shared_ptr<ServerElement> object);
  void PublishChanged() noexcept override;

 private:
  friend class ServerResource;

  std::vector<Embedded> embedded_;
  std::weak_ptr<ServerResource> resource_;    // guarded by the object's mutex; set while the element is in the resource's list
  std::shared_ptr<const Rendered> rendered_;  // I/O thread only
};

}  // namespace zuva
