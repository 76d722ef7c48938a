#pragma once

#include <memory>
#include <mutex>
#include <string_view>

#include "ara/rest/ogm.h"

namespace zuva {

namespace ogm = ara::rest::ogm;

class BaseXObject;

/// Field writes of one object, kept aside until the commit: all of them reach the object, or none. While it lives uncommitted it is the
/// object's latest active transaction, and field writes and reads of the object go to it. The thread that begins one holds a
/// `ChangeScope` of the object until it is committed or dropped.
class Transaction {
 public:
  /// Begins a transaction and makes it the object's latest active one.
  static std::shared_ptr<Transaction> Begin(BaseXObject& object);

  explicit Transaction(BaseXObject& object) : object_{object} {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Adds the field with the default value of `T`, unless it is there.
  template <class T>
  bool AddField(std::string_view name) {
    return AddFieldNode(name, ara::rest::MakePointer<T>());
  }
  /// The value in the transaction. Throws `DataModelException` if the transaction doesn't hold the field.
  template <class T>
  typename T::ValueType GetFieldValue(std::string_view name) const {
    const std::lock_guard lock{mutex_};
    return ogm::ValueOf(ogm::Get<T>(fields_, name));
  }
  bool HasField(std::string_view name) const;
  void RemoveField(std::string_view name);
  bool AddFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> initial);
  /// Tells whether the value differs from the one that the transaction, or else the object, has.
  bool SetFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> value);

  /// Writes everything to the object, between its two commit callbacks. Done once; later calls do nothing.
  void Commit();
  bool IsActive() const;

 private:
  BaseXObject& object_;
  mutable std::mutex mutex_;  // guards the members below
  ogm::Object fields_;
  bool active_ = true;
};

}  // namespace zuva
