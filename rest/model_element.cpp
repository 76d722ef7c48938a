#include "rest/model_element.h"

#include <algorithm>
#include <stdexcept>

#include "rest/answers.h"
#include "zuva/change_scope.h"

namespace zuva::server {
namespace ogm = ara::rest::ogm;
namespace {

bool Refuse(zuva::ServerReply& reply, const char* text, unsigned short code) {
  reply.SendError(text, code);
  return false;
}

bool IsAllowed(const Property& property, const ogm::Value& value) {
  switch (property.kind) {
    case ogm::Kind::Int:
      return property.InRange(static_cast<double>(static_cast<const ogm::Int&>(value).GetValue()));
    case ogm::Kind::Real:
      return property.InRange(static_cast<const ogm::Real&>(value).GetValue());
    case ogm::Kind::String:
      return property.words.empty() || property.HasWord(static_cast<const ogm::String&>(value).GetValue());
    default:
      return true;
  }
}

void CheckWord(const Property& property, const std::string& word) {
  if (!property.words.empty() && !property.HasWord(word)) throw std::domain_error{"Unsupported type: " + word};
}

void CheckRange(const Property& property, double value) {
  if (!property.InRange(value)) throw std::domain_error{"Value out of range"};
}

}  // namespace

bool Property::HasWord(std::string_view word) const {
  return std::find(words.begin(), words.end(), word) != words.end();
}

const Property* ElementModel::Find(std::string_view name) const {
  const auto found = std::find_if(properties.begin(), properties.end(), [&](const Property& property) { return property.name == name; });
  return found == properties.end() ? nullptr : &*found;
}

bool ElementModel::IsWritable() const {
  return std::any_of(properties.begin(), properties.end(), [](const Property& property) { return property.post != Property::Post::no; });
}

bool CheckPosted(const ElementModel& model, const ogm::Object& posted, zuva::ServerReply& reply) {
  for (const auto& property : model.properties) {
    if (property.post == Property::Post::required && !posted.HasField(property.name)) return Refuse(reply, kMissingParameter, 409);
  }
  for (const auto& field : posted.GetFields()) {
    if (field.GetName() == "id") continue;
    const Property* const property = model.Find(field.GetName());
    if (!property || property->post == Property::Post::no) return Refuse(reply, kForeignParameter, 409);
    if (!field.HasValue() || field.GetValue().GetType() != property->kind) return Refuse(reply, kBadMessage, 400);
    if (!IsAllowed(*property, field.GetValue())) return Refuse(reply, kValueNotAllowed, 400);
  }
  return true;
}

ModelElement::ModelElement(const ElementModel& model, const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name)
    : ServerElement{uuid, uri, std::move(name)}, model_{model} {
  SetPreGetCallback([](const auto&, zuva::ServerReply&) { return true; });
  if (!model.IsWritable()) return;  // offers no POST
  SetPreUpdateCallback(
      [&model](const auto&, const ogm::Object& posted, zuva::ServerReply& reply) { return CheckPosted(model, posted, reply); });
}

const Property& ModelElement::Require(std::string_view name, ogm::Kind kind) const {
  const Property* const property = model_.Find(name);
  if (property && property->kind == kind) return *property;
  throw std::logic_error{std::string{model_.className} + " has no such property: " + std::string{name}};
}

bool ModelElement::SetWord(std::string_view name, const std::string& word) {
  const auto& property = Require(name, ogm::Kind::String);
  CheckWord(property, word);
  const zuva::ChangeScope scope{*this};
  const bool added = AddField<ogm::String>(name);
  return SetFieldValue<ogm::String>(name, word, added && property.words.empty());
}

bool ModelElement::SetNumber(std::string_view name, std::int64_t value) {
  CheckRange(Require(name, ogm::Kind::Int), static_cast<double>(value));
  const zuva::ChangeScope scope{*this};
  const bool added = AddField<ogm::Int>(name);
  return SetFieldValue<ogm::Int>(name, value, added);
}

bool ModelElement::SetReal(std::string_view name, double value) {
  CheckRange(Require(name, ogm::Kind::Real), value);
  const zuva::ChangeScope scope{*this};
  const bool added = AddField<ogm::Real>(name);
  return SetFieldValue<ogm::Real>(name, value, added);
}

bool ModelElement::SetFlag(std::string_view name, bool value) {
  Require(name, ogm::Kind::Bool);
  const zuva::ChangeScope scope{*this};
  const bool added = AddField<ogm::Bool>(name);
  return SetFieldValue<ogm::Bool>(name, value, added);
}

bool ModelElement::SetWords(std::string_view name, std::span<const std::string> words) {
  const auto& property = Require(name, ogm::Kind::Array);
  auto list = ara::rest::MakePointer<ogm::Array>();
  for (const auto& word : words) {
    CheckWord(property, word);
    list->Append(ara::rest::MakePointer<ogm::String>(word));
  }
  const zuva::ChangeScope scope{*this};
  const bool added = AddField<ogm::Array>(name);
  return SetFieldValue<ogm::Array>(name, std::move(list), added);
}

void ModelElement::Unset(std::string_view name) {
  if (!model_.Find(name)) throw std::logic_error{std::string{model_.className} + " has no such property: " + std::string{name}};
  RemoveField(name);
}

bool ModelElement::HasWord(std::string_view name, std::string_view word) const {
  const auto lock = Lock();
  const ogm::Object& fields = const_cast<ModelElement&>(*this).GetOGM();  // looked at under the lock, in place of a copy
  if (!fields.HasField(name)) return word.empty();
  return ogm::Get<ogm::String>(fields, name).GetValue() == word;
}

WordList ModelElement::GetWords(std::string_view name) const {
  WordList words{ara::rest::StdAllocator<std::string>{ara::rest::GetDefaultAllocator()}};
  const auto list = Read<ogm::Array>(name);
  if (!list) return words;
  for (const auto& value : **list) {
    if (value.GetType() == ogm::Kind::String) words.push_back(static_cast<const ogm::String&>(value).GetValue());
  }
  return words;
}

void ModelElement::Embed(std::string_view name, std::shared_ptr<ModelElement> object) {
  Require(name, ogm::Kind::Object);
  if (!object) throw ara::rest::InvalidArgumentException{"ptr is null"};
  auto tree = object->ToOGM();
  KeepEmbedded(std::string{name}, std::move(object));
  const zuva::ChangeScope scope{*this};
  AddField<ogm::Object>(name);
  SetFieldValue<ogm::Field, ogm::Object>(name, std::move(tree));
}

std::shared_ptr<zuva::ServerElement> ModelElement::FindEmbedded(std::string_view name) const {
  for (const auto& [property, object] : GetEmbedded()) {
    if (property == name) return object;
  }
  return nullptr;
}

ara::rest::Pointer<ogm::Object> ModelElement::ToOGM() const {
  auto tree = ServerElement::ToOGM();
  for (const auto& [property, object] : GetEmbedded()) {
    if (tree->HasField(property)) ogm::Get<ogm::Field>(*tree, property).SetValue(object->ToOGM());
  }
  return tree;
}

ara::rest::Uri ElementUri(std::string_view resourceUri, const ara::rest::Uuid& uuid) {
  return ara::rest::Uri::Builder{std::string{resourceUri} + '/' + uuid.ToString(), ara::rest::GetDefaultAllocator()}.ToUri();
}

}  // namespace zuva::server
