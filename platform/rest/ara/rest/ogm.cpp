#include "ara/rest/ogm.h"

#include <algorithm>

namespace ara::rest::ogm {
namespace {

template <class T>
const T* As(const Value& value) noexcept {
  return value.GetType() == T::kKind ? static_cast<const T*>(&value) : nullptr;
}

}  // namespace

Pointer<Value> Null::Clone() const {
  return MakePointer<Null>();
}
bool Null::Equals(const Value& other) const noexcept {
  return other.GetType() == kKind;
}

Field::Field(std::string name, Pointer<Value> value) : name_{std::move(name)} {
  SetValue(std::move(value));
}

const Value& Field::GetValue() const {
  if (!value_) throw DataModelException{"Field '" + name_ + "' has no value"};
  return *value_;
}

Value& Field::GetValue() {
  return const_cast<Value&>(std::as_const(*this).GetValue());
}

void Field::SetValue(Pointer<Value> value) {
  value_ = std::move(value);
  if (value_) value_->SetParent(this);
}

Pointer<Field> Field::Clone() const {
  if (!value_) return MakePointer<Field>(name_);
  return MakePointer<Field>(name_, value_->Clone());
}

bool Field::operator==(const Field& other) const noexcept {
  if (name_ != other.name_) return false;
  if (!value_ || !other.value_) return !value_ && !other.value_;
  return value_->Equals(*other.value_);
}

Field& Object::Append(Pointer<Field> field) {
  if (!field) throw InvalidArgumentException{"ptr is null"};
  field->SetParent(this);
  fields_.push_back(std::move(field));
  return *fields_.back();
}

Field& Object::Append(std::string name, Pointer<Value> value) {
  return Append(MakePointer<Field>(std::move(name), std::move(value)));
}

const Field* Object::Find(std::string_view name) const noexcept {
  const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const auto& field) { return field->GetName() == name; });
  return found == fields_.end() ? nullptr : found->get();
}

Field* Object::Find(std::string_view name) noexcept {
  return const_cast<Field*>(std::as_const(*this).Find(name));
}

bool Object::Remove(std::string_view name) {
  return std::erase_if(fields_, [&](const auto& field) { return field->GetName() == name; }) != 0;
}

void Object::Swap(Object& other) noexcept {
  fields_.swap(other.fields_);
  for (const auto& field : fields_) field->SetParent(this);
  for (const auto& field : other.fields_) field->SetParent(&other);
}

bool Object::operator==(const Object& other) const noexcept {
  return std::equal(begin(), end(), other.begin(), other.end());
}

Pointer<Value> Object::Clone() const {
  auto copy = MakePointer<Object>();
  copy->fields_.reserve(fields_.size());
  for (const auto& field : fields_) copy->Append(field->Clone());
  return copy;
}

bool Object::Equals(const Value& other) const noexcept {
  const auto* const object = As<Object>(other);
  return object && *object == *this;
}

Value& Array::Append(Pointer<Value> value) {
  if (!value) throw InvalidArgumentException{"ptr is null"};
  value->SetParent(this);
  values_.push_back(std::move(value));
  return *values_.back();
}

bool Array::operator==(const Array& other) const noexcept {
  return std::equal(begin(), end(), other.begin(), other.end(), [](const Value& left, const Value& right) { return left.Equals(right); });
}

Pointer<Value> Array::Clone() const {
  auto copy = MakePointer<Array>();
  copy->values_.reserve(values_.size());
  for (const auto& value : values_) copy->Append(value->Clone());
  return copy;
}

bool Array::Equals(const Value& other) const noexcept {
  const auto* const array = As<Array>(other);
  return array && *array == *this;
}

namespace impl {

void ThrowMissing(std::string_view name) {
  throw DataModelException{"Field '" + std::string{name} + "' does not exist"};
}
void ThrowWrongKind(std::string_view name) {
  throw DataModelException{"Field '" + std::string{name} + "' is of another kind"};
}

}  // namespace impl

}  // namespace ara::rest::ogm
