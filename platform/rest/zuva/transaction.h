#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ara/rest/ogm.h"

namespace zuva {

namespace ogm = ara::rest::ogm;

class BaseXObject;

/// Field writes and removals of one object, kept aside until the commit: all of them reach the object, or none. While it lives uncommitted
/// it is the object's latest active transaction, and field writes and reads of the object go to it. The thread that begins one holds a
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
  /// Whether the field was written or removed here, so that the object's own value does not count.
  bool Decides(std::string_view name) const;
  /// Tells whether the transaction, or else the object, had the field.
  bool RemoveField(std::string_view name);
  bool AddFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> initial);
  /// Tells whether the value differs from the one that the transaction, or else the object, has.
  bool SetFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> value);

  /// Writes everything to the object, between its two commit callbacks. Done once; later calls do nothing.
  void Commit();
  bool IsActive() const;

 private:
  bool IsRemovedLocked(std::string_view name) const;
  /// The object's field as the transaction leaves it; null if the object has none or it was removed here.
  const ogm::Field* FindStoredLocked(std::string_view name) const;

  BaseXObject& object_;
  mutable std::mutex mutex_;          // guards the members below
  ogm::Object fields_;                // written, and present after the commit
  std::vector<std::string> removed_;  // from the object's store, before `fields_` are written
  bool active_ = true;
};

}  // namespace zuva
