#pragma once

#include <memory>
#include <string>

/*% for service in services %*/
#include "rest/generated/${service.snake}/${service.snake}.h"
/*% for resource in service.resources %*/
#include "rest/generated/${service.snake}/${resource.snake}.h"
/*% endfor %*/
/*% endfor %*/
#include "zuva/server.h"

/// The top-level server: both services, their resources, and typed access to them.
///
/// The accessors give null before `InitServices`, which is called once, before the start; after that any thread may call them.
class ZuvaServer final : public zuva::Server {
 public:
  ZuvaServer(std::string name, const std::string& configPath);

  /// Makes both services with their resources and puts them into the server.
  void InitServices();

/*% for service in services %*/
  std::shared_ptr<${service.namespace}::${service.name}> Get${service.name}() const { return ${service.member}_; }
/*% for resource in service.resources %*/
  std::shared_ptr<${service.namespace}::${resource.class}> Get${service.name}${resource.class}() const {
    return ${service.member}${resource.class}_;
  }
/*% endfor %*/
/*% endfor %*/

  // Each puts the object into the resource of its class, or takes it out.
  using zuva::Server::Add;
/*% for service in services %*/
/*% for resource in service.resources %*/
  void Add(const std::shared_ptr<${service.namespace}::${resource.element.class}>& object);
  void Remove(const std::shared_ptr<${service.namespace}::${resource.element.class}>& object);
/*% endfor %*/
/*% endfor %*/

 private:
  template <class Resource>
  void Install(const std::shared_ptr<zuva::ServerService>& service, std::shared_ptr<Resource>& resource);

/*% for service in services %*/
  std::shared_ptr<${service.namespace}::${service.name}> ${service.member}_;
/*% for resource in service.resources %*/
  std::shared_ptr<${service.namespace}::${resource.class}> ${service.member}${resource.class}_;
/*% endfor %*/
/*% endfor %*/
};
