#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "ara/rest/allocator.h"
#include "ara/rest/ogm.h"
#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"
#include "zuva/server_resource.h"
#include "zuva/server_service.h"

namespace zuva::server {

/// A resource and its part of the specification document, as JSON text.
struct ResourceDocument {
  std::string_view name;
  std::string_view text;
};

inline ara::rest::Uri ToUri(std::string_view path) {
  return ara::rest::Uri::Builder{std::string{path}, ara::rest::GetDefaultAllocator()}.ToUri();
}

/// Sets the field "description" and the specification document, an object as JSON text.
inline void Describe(zuva::BaseXObject& object, std::string_view description, const std::string& document) {
  object.SetFieldValue<ara::rest::ogm::String>("description", std::string{description});
  object.SetSpec(ara::rest::serialize::JSONSerializer{}.Deserialize(document));
}

/// The base of all resource classes. The identifier follows from the URI, so that a resource has the same one at each start.
class ModelResource : public zuva::ServerResource {
 protected:
  ModelResource(std::string_view uri, std::string_view description, const ResourceDocument& document)
      : zuva::ServerResource{ara::rest::Uuid::MakeV5(uri), ToUri(uri), std::string{document.name}} {
    Describe(*this, description, "{\"" + std::string{document.name} + "\":" + std::string{document.text} + "}");
    SetPreGetCallback([](const std::shared_ptr<zuva::BaseXObject>&, zuva::ServerReply&) { return true; });
  }
};

/// The base of the service classes. A service has the nil identifier.
class ModelService : public zuva::ServerService {
 protected:
  /// `head` is the document's text before its resources, without the closing brace.
  ModelService(std::string_view uri, std::string_view name, std::string_view description, std::string_view head,
               std::initializer_list<ResourceDocument> resources)
      : zuva::ServerService{ara::rest::Uuid{}, ToUri(uri), std::string{name}} {
    std::string document{head};
    std::string_view separator = ",\"resources\":{";
    for (const auto& resource : resources) {
      document.append(separator).append("\"").append(resource.name).append("\":").append(resource.text);
      separator = ",";
    }
    Describe(*this, description, document + "}}");
  }
};

}  // namespace zuva::server
