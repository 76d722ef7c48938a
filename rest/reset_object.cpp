#include "rest/reset_object.h"

#include <utility>

namespace zuva::server::factory_reset {
namespace ogm = ara::rest::ogm;
namespace {

constexpr const char* kLastReset = "lastReset";

}  // namespace

ResetObject::ResetObject(const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name)
    : ModelElement{kModel, uri, uuid, std::move(name)}, lastReset_{NoReset()} {}

zuva::format::DateTime ResetObject::NoReset() {
  return {1970, 1, 1, 0, 0, 0, 0, "+00:00"};
}

void ResetObject::SetLastReset(const zuva::format::DateTime& date) {
  const zuva::ChangeScope scope{*this};
  if (lastReset_.GetValue() != date.GetValue()) Touch();  // the tree shows the date whatever the field says
  lastReset_ = date;
  if (lastReset_.GetPostValueChangeCallback()) return;
  lastReset_.SetPostValueChangeCallback([this](const std::string& text) {  // a member's callback: it ends with the object
    AddField<ogm::String>(kLastReset);
    SetFieldValue<ogm::String>(kLastReset, text);
  });
}

ara::rest::Pointer<ogm::Object> ResetObject::ToOGM() const {
  const auto lock = Lock();  // the fields and the date of one moment
  auto tree = ModelElement::ToOGM();
  if (!tree->HasField(kLastReset)) return tree;
  auto& text = ogm::Get<ogm::String>(*tree, kLastReset);
  if (text.GetValue() != lastReset_.GetValue()) text.SetValue(lastReset_.GetValue());
  return tree;
}

}  // namespace zuva::server::factory_reset
