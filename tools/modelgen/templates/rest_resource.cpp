#include "rest/generated/${service.snake}/${resource.snake}.h"

/*% for other in element.setters | selectattr("embedded") | map(attribute="embedded_snake") | unique %*/
#include "rest/generated/${service.snake}/${other}.h"
/*% endfor %*/
#include "rest/generated/words.h"

#include <utility>

namespace ${service.namespace} {
/*% if not element.byHand %*/
namespace {

/*% include "rest_properties.cpp" %*/

}  // namespace

constinit const ElementModel ${element.class}::kModel{"${element.class}", "${resource.uri}", kProperties};

std::shared_ptr<${element.class}> ${element.class}::Make(std::string name, const ara::rest::Uuid& uuid, const ara::rest::Uri& uri) {
  return MakeElement<${element.class}>(std::move(name), uuid, uri);
}

${element.class}::${element.class}(const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name)
    : ModelElement{kModel, uri, uuid, std::move(name)} {}
/*% for property in element.setters | selectattr("embedded") %*/

void ${element.class}::Set${property.Name}(std::shared_ptr<${property.embedded}> object) {
  Embed("${property.name}", std::move(object));
}
/*% endfor %*/
/*% endif %*/

constinit const std::string_view ${resource.class}::kDocument =
    R"json(${resource.text})json";

${resource.class}::${resource.class}() : ModelResource{kUri, ${resource.description | quote}, {kName, kDocument}} {}

std::shared_ptr<zuva::ServerElement> ${resource.class}::MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri,
                                                                    std::string name) {
  return ${element.class}::Make(std::move(name), uuid, uri);
}

}  // namespace ${service.namespace}
