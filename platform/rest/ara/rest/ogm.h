#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "ara/rest/allocator.h"
#include "ara/rest/exceptions.h"

/// The value tree: ordered objects of named fields, arrays and scalars. A node is owned by its parent, is neither copied nor moved
/// (`Copy` makes a deep copy), and belongs to one thread at a time.
namespace ara::rest::ogm {

enum class Kind : std::uint8_t { Field = 0, Object = 1, Array = 2, Null = 3, Int = 4, Real = 5, String = 6, Bool = 7 };

/// Root of all tree classes.
class Node {
 public:
  Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node() = default;

  virtual Kind GetType() const noexcept = 0;
  void SetParent(Node* parent) noexcept { parent_ = parent; }
  Node* GetParent() const noexcept { return parent_; }

 private:
  Node* parent_ = nullptr;
};

/// Anything that a field or an array can hold.
class Value : public Node {
 public:
  virtual Pointer<Value> Clone() const = 0;
  /// Same kind and same content. Two not-a-numbers are the same, so that writing one twice is no change.
  virtual bool Equals(const Value& other) const noexcept = 0;
};

/// JSON's `null`.
class Null final : public Value {
 public:
  static constexpr Kind kKind = Kind::Null;
  Kind GetType() const noexcept override { return kKind; }
  Pointer<Value> Clone() const override;
  bool Equals(const Value& other) const noexcept override;
};

/// A plain value.
template <Kind kind, class T>
class Scalar final : public Value {
 public:
  using ValueType = T;
  static constexpr Kind kKind = kind;

  Scalar() = default;
  explicit Scalar(ValueType value) : value_{std::move(value)} {}
  Kind GetType() const noexcept override { return kKind; }
  const ValueType& GetValue() const noexcept { return value_; }
  void SetValue(ValueType value) noexcept { value_ = std::move(value); }
  Pointer<Value> Clone() const override { return MakePointer<Scalar>(value_); }
  bool Equals(const Value& other) const noexcept override {
    if (other.GetType() != kKind) return false;
    const auto& same = static_cast<const Scalar&>(other).value_;
    if constexpr (std::is_floating_point_v<T>) {
      if (std::isnan(same) && std::isnan(value_)) return true;
    }
    return same == value_;
  }

 private:
  ValueType value_{};
};

using Int = Scalar<Kind::Int, std::int64_t>;
using Real = Scalar<Kind::Real, double>;  ///< holds every 32-bit float of the vehicle unchanged
using Bool = Scalar<Kind::Bool, bool>;
using String = Scalar<Kind::String, std::string>;

/// A name and one owned value, or none.
class Field final : public Node {
 public:
  static constexpr Kind kKind = Kind::Field;

  explicit Field(std::string name) : name_{std::move(name)} {}
  Field(std::string name, Pointer<Value> value);
  Kind GetType() const noexcept override { return kKind; }
  const std::string& GetName() const noexcept { return name_; }
  bool HasValue() const noexcept { return value_ != nullptr; }
  /// Throws `DataModelException` if there is none.
  Value& GetValue();
  const Value& GetValue() const;
  void SetValue(Pointer<Value> value);
  Pointer<Field> Clone() const;
  bool operator==(const Field& other) const noexcept;

 private:
  std::string name_;
  Pointer<Value> value_;
};

namespace impl {

/// Walks a vector of owning pointers as a range of references.
template <class T, class Base>
class Iterator {
 public:
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using pointer = T*;
  using iterator_category = std::forward_iterator_tag;

  Iterator() = default;
  explicit Iterator(Base position) : position_{position} {}
  T& operator*() const { return **position_; }
  T* operator->() const { return position_->get(); }
  Iterator& operator++() {
    ++position_;
    return *this;
  }
  // A constant result, as the check wants it, would not be an iterator's.
  Iterator operator++(int) { return Iterator{position_++}; }  // NOLINT(cert-dcl21-cpp)
  bool operator==(const Iterator&) const = default;

 private:
  Base position_{};
};

/// The view of an object's fields or an array's values; valid while its owner is unchanged.
template <class T>
class Range {
 public:
  using iterator = Iterator<T, typename std::vector<Pointer<std::remove_const_t<T>>>::const_iterator>;
  explicit Range(const std::vector<Pointer<std::remove_const_t<T>>>& items) : items_{&items} {}
  iterator begin() const { return iterator{items_->begin()}; }
  iterator end() const { return iterator{items_->end()}; }
  std::size_t size() const noexcept { return items_->size(); }
  bool empty() const noexcept { return items_->empty(); }
  T& operator[](std::size_t index) const { return *(*items_)[index]; }

 private:
  const std::vector<Pointer<std::remove_const_t<T>>>* items_;
};

}  // namespace impl

/// Ordered fields. Names are unique; whoever appends sees to it.
class Object final : public Value {
 public:
  using ValueType = Pointer<Object>;
  static constexpr Kind kKind = Kind::Object;

  Kind GetType() const noexcept override { return kKind; }
  Field& Append(Pointer<Field> field);
  Field& Append(std::string name, Pointer<Value> value);
  /// Null if there is no such field.
  Field* Find(std::string_view name) noexcept;
  const Field* Find(std::string_view name) const noexcept;
  bool HasField(std::string_view name) const noexcept { return Find(name) != nullptr; }
  bool Remove(std::string_view name);
  impl::Range<Field> GetFields() noexcept { return impl::Range<Field>{fields_}; }
  impl::Range<const Field> GetFields() const noexcept { return impl::Range<const Field>{fields_}; }
  auto begin() noexcept { return GetFields().begin(); }
  auto end() noexcept { return GetFields().end(); }
  auto begin() const noexcept { return GetFields().begin(); }
  auto end() const noexcept { return GetFields().end(); }
  /// Exchanges the fields of the two.
  void Swap(Object& other) noexcept;
  /// The same fields in the same order.
  bool operator==(const Object& other) const noexcept;
  Pointer<Value> Clone() const override;
  bool Equals(const Value& other) const noexcept override;

 private:
  std::vector<Pointer<Field>> fields_;
};

/// Ordered values.
class Array final : public Value {
 public:
  using ValueType = Pointer<Array>;
  static constexpr Kind kKind = Kind::Array;

  Kind GetType() const noexcept override { return kKind; }
  Value& Append(Pointer<Value> value);
  impl::Range<Value> GetValues() noexcept { return impl::Range<Value>{values_}; }
  impl::Range<const Value> GetValues() const noexcept { return impl::Range<const Value>{values_}; }
  auto begin() noexcept { return GetValues().begin(); }
  auto end() noexcept { return GetValues().end(); }
  auto begin() const noexcept { return GetValues().begin(); }
  auto end() const noexcept { return GetValues().end(); }
  bool operator==(const Array& other) const noexcept;
  Pointer<Value> Clone() const override;
  bool Equals(const Value& other) const noexcept override;

 private:
  std::vector<Pointer<Value>> values_;
};

namespace impl {

[[noreturn]] void ThrowMissing(std::string_view name);
[[noreturn]] void ThrowWrongKind(std::string_view name);

}  // namespace impl

/// The field's value as `T`, or the field itself for `Get<Field>`. Throws `DataModelException` if the field is missing or of another kind.
template <class T>
const T& Get(const Object& object, std::string_view name) {
  const Field* const field = object.Find(name);
  if (!field) impl::ThrowMissing(name);
  if constexpr (std::is_same_v<T, Field>) {
    return *field;
  } else {
    if (!field->HasValue() || field->GetValue().GetType() != T::kKind) impl::ThrowWrongKind(name);
    return static_cast<const T&>(field->GetValue());
  }
}
template <class T>
T& Get(Object& object, std::string_view name) {
  return const_cast<T&>(Get<T>(std::as_const(object), name));
}

/// A deep copy, made with the default allocator.
template <class T>
Pointer<T> Copy(const T& node) {
  auto copy = node.Clone();
  const auto deleter = copy.get_deleter();
  return Pointer<T>{static_cast<T*>(copy.release()), deleter};
}

/// The payload as a value of its own: a scalar's value, a copy of an array or object.
template <class T>
typename T::ValueType ValueOf(const T& node) {
  if constexpr (std::is_same_v<typename T::ValueType, Pointer<T>>) {
    return Copy(node);
  } else {
    return node.GetValue();
  }
}

/// The inverse: a node that holds the value.
template <class T>
Pointer<Value> ToNode(typename T::ValueType value) {
  if constexpr (std::is_same_v<typename T::ValueType, Pointer<T>>) {
    return value;
  } else {
    return MakePointer<T>(std::move(value));
  }
}

}  // namespace ara::rest::ogm
