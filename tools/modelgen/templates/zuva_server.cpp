#include "rest/generated/zuva_server.h"

#include <utility>

#include "ara/rest/allocator.h"

ZuvaServer::ZuvaServer(std::string name, const std::string& configPath) : zuva::Server{std::move(name), configPath} {}

template <class Resource>
void ZuvaServer::Install(const std::shared_ptr<zuva::ServerService>& service, std::shared_ptr<Resource>& resource) {
  resource = ara::rest::MakeSharedPointer<Resource>();
  service->Add(resource);
  Add(service);  // once for each resource, on purpose: a service that is held already stays as it is
}

void ZuvaServer::InitServices() {
/*% for service in services %*/
  ${service.member}_ = ara::rest::MakeSharedPointer<${service.namespace}::${service.name}>();
/*% for resource in service.resources %*/
  Install(${service.member}_, ${service.member}${resource.class}_);
/*% endfor %*/
/*% endfor %*/
}
/*% for service in services %*/
/*% for resource in service.resources %*/

void ZuvaServer::Add(const std::shared_ptr<${service.namespace}::${resource.element.class}>& object) {
  ${service.member}${resource.class}_->Add(object);
}
void ZuvaServer::Remove(const std::shared_ptr<${service.namespace}::${resource.element.class}>& object) {
  ${service.member}${resource.class}_->Remove(object->GetUuid());
}
/*% endfor %*/
/*% endfor %*/
