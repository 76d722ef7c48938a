#include "rest/server/element_update.h"

#include "rest/typed_elements.h"

namespace trov::zuvaServer {

void ErrorLines::LogDomain(const ara::log::Logger& logger, std::string_view field, const std::domain_error& error) const {
  if (prefix.empty()) {
    logger.LogInfo() << domain << error;
  } else {
    logger.LogInfo() << prefix << field << " - " << error;
  }
}

void ErrorLines::LogOther(const ara::log::Logger& logger, std::string_view field) const {
  if (prefix.empty()) {
    logger.LogInfo() << other;
  } else {
    logger.LogInfo() << prefix << field << " - Unknown exception";
  }
}

std::shared_ptr<zuva::server::ModelElement> FindByType(zuva::ServerResource& resource, const Word& type) {
  for (const auto& element : resource.GetElements()) {
    auto object = zuva::server::TypedElement<zuva::server::ModelElement>(element);
    if (object->HasWord("type", type.value())) return object;
  }
  return nullptr;
}

}  // namespace trov::zuvaServer
