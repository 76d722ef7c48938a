#pragma once

#include <memory>
#include <string>
#include <string_view>

/*% if not element.byHand %*/
#include "rest/model_element.h"
/*% endif %*/
#include "rest/model_resource.h"
/*% if element.byHand %*/
#include "rest/${element.snake}.h"
/*% endif %*/
/*% if resource.typedList %*/
#include "rest/typed_elements.h"
/*% endif %*/

namespace ${service.namespace} {

/*% if not element.byHand %*/
/*% for class in element.setters | selectattr("embedded") | map(attribute="embedded") | unique %*/
class ${class};
/*% endfor %*/
class ${element.class} final : public ModelElement {
 public:
  static const ElementModel kModel;

  static std::shared_ptr<${element.class}> Make(std::string name, const ara::rest::Uuid& uuid, const ara::rest::Uri& uri);
  ${element.class}(const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name);
/*% for property in element.setters %*/
/*% if loop.first %*/

/*% endif %*/
/*% if property.type == "string" %*/
  bool Set${property.Name}(const std::string& word) { return SetWord("${property.name}", word); }
/*% elif property.type == "integer" %*/
  bool Set${property.Name}(long value) { return SetNumber("${property.name}", value); }
/*% elif property.type == "array" %*/
  bool Set${property.Name}(const WordList& words) { return SetWords("${property.name}", words); }
/*% else %*/
  void Set${property.Name}(std::shared_ptr<${property.embedded}> object);
/*% endif %*/
/*% endfor %*/
/*% for property in element.getters %*/
/*% if property.type == "string" %*/
  std::string Get${property.Name}() const { return GetWord("${property.name}"); }
/*% else %*/
  WordList Get${property.Name}() const { return GetWords("${property.name}"); }
/*% endif %*/
/*% endfor %*/
};

/*% endif %*/
class ${resource.class} final : public ModelResource {
 public:
  static constexpr std::string_view kName = "${resource.name}";
  static constexpr std::string_view kUri = "${resource.uri}";
  static const std::string_view kDocument;

  ${resource.class}();

  std::shared_ptr<zuva::ServerElement> MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) override;
/*% if resource.typedList %*/

  zuva::server::ElementList<${element.class}> Get${element.class}s() { return TypedElements<${element.class}>(*this); }
/*% endif %*/
};

}  // namespace ${service.namespace}
