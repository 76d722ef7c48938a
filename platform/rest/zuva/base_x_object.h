#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"
#include "zuva/base_type.h"
#include "zuva/change_scope.h"

namespace zuva {

enum class XObjectType : std::uint8_t { Server, Service, Resource, Element };

/// A field store with an identity, shared by pointers. The fields `id`, `name` and `uri` stand first in its tree; they are written by
/// `SetUuid`, `SetName` and `SetUri` alone.
///
/// Every field write opens a `ChangeScope` if none is open, so callbacks of a property change run with the object locked, at once. They
/// are called only while the object is owned by a shared pointer.
class BaseXObject : public BaseType, public std::enable_shared_from_this<BaseXObject> {
 public:
  /// The object, the field as it was, and the new value.
  using PrePropertyChangeCallback = std::function<void(std::shared_ptr<BaseXObject>, const ogm::Field&, const ogm::Value&)>;
  /// The object, and the name of the field.
  using PostPropertyChangeCallback = std::function<void(std::shared_ptr<BaseXObject>, const std::string&)>;
  /// The object, and the fields of the transaction.
  using TransactionCommitCallback = std::function<void(std::shared_ptr<BaseXObject>, const ogm::Object&)>;

  BaseXObject(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name);

  /// With a transaction active the removal is part of it, and the field is one of the transaction or of the store.
  bool RemoveField(std::string_view name) override;
  void Update(const ogm::Object& fields) override;
  /// An object is no list: throws `DataModelException`.
  void Update(const ogm::Array& objects) override;
  void RemoveFields(const ogm::Object& fields) override;
  virtual TransactionCommitCallback GetPreTransactionCommitCallback() const;
  virtual TransactionCommitCallback GetPostTransactionCommitCallback() const;
  /// The specification document; empty if there is none.
  virtual std::shared_ptr<const ogm::Object> GetSpec() const;
  virtual void SetSpec(ara::rest::Pointer<ogm::Object> spec);
  /// The framework does not call it.
  virtual XObjectType GetXObjectType() const noexcept = 0;

  /// Adds the field with the default value of `T`; a field that is there stays as it is. Tells whether it was added.
  template <class T>
  bool AddField(std::string_view name) {
    return AddFieldNode(name, ara::rest::MakePointer<T>());
  }
  /// Writes the field, which is added if it is missing. Tells whether that changed it. The change is told if it was one, or if forced.
  template <class T>
  bool SetFieldValue(std::string_view name, typename T::ValueType value, bool force = false) {
    return SetFieldNode(name, ogm::ToNode<T>(std::move(value)), force);
  }
  /// The same for a nested object or array, as `SetFieldValue<Field, Object>(name, tree)`.
  template <class F, class T>
  requires std::same_as<F, ogm::Field>
  bool SetFieldValue(std::string_view name, ara::rest::Pointer<T> value, bool force = false) {
    return SetFieldNode(name, std::move(value), force);
  }

  ara::rest::Uuid GetUuid() const;
  ara::rest::Uri GetUri() const;
  std::string GetName() const;
  void SetUuid(const ara::rest::Uuid& uuid);
  void SetUri(const ara::rest::Uri& uri);
  void SetName(std::string name);

  PrePropertyChangeCallback GetPrePropertyChangeCallback() const;
  PostPropertyChangeCallback GetPostPropertyChangeCallback() const;
  void SetPrePropertyChangeCallback(PrePropertyChangeCallback callback);
  void SetPostPropertyChangeCallback(PostPropertyChangeCallback callback);
  void SetPreTransactionCommitCallback(TransactionCommitCallback callback);
  void SetPostTransactionCommitCallback(TransactionCommitCallback callback);

  /// Grows with every change of the object's tree, and never else. Any thread; takes no lock.
  virtual std::uint64_t ContentVersion() const noexcept { return version_.load(std::memory_order_acquire); }

 protected:
  /// Notes that the object's tree is another than before, for what is not a field. The caller has a `ChangeScope` open.
  void Touch() noexcept;
  /// Tells the outside that the object changed. Called with the object locked.
  virtual void PublishChanged() noexcept {}
  /// Forgets a change that the open scope has not published yet, since the object was just told whole. The object is locked.
  void ClearTouchedLocked() noexcept { touched_ = false; }

 private:
  friend class ChangeScope;
  friend class Transaction;

  bool AddFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> initial);
  bool SetFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> value, bool force);
  void WriteLocked(std::string_view name, ara::rest::Pointer<ogm::Value> value);
  void SetIdentityLocked(std::string_view name, std::string text);
  void CallPreChangeLocked(std::string_view name, const ogm::Value& value);
  void CallPostChangeLocked(std::string_view name);
  void Commit(const ogm::Object& fields, const std::vector<std::string>& removed);

  std::atomic<std::uint64_t> version_{1};  // raised with the object locked

  // Guarded by the object's mutex.
  ara::rest::Uuid uuid_;
  ara::rest::Uri uri_;
  std::string name_;
  std::shared_ptr<const ogm::Object> spec_;
  PrePropertyChangeCallback preChange_;
  PostPropertyChangeCallback postChange_;
  TransactionCommitCallback preCommit_;
  TransactionCommitCallback postCommit_;
  unsigned scopeDepth_ = 0;
  bool touched_ = false;
};

}  // namespace zuva
