#pragma once

#include <memory>
#include <mutex>
#include <string_view>

#include "ara/rest/ogm.h"
#include "zuva/transaction.h"

namespace zuva {

/// The field store: an ordered tree of named fields behind a recursive mutex. Every operation but `GetOGM` is safe on any thread.
class BaseType {
 public:
  BaseType() = default;
  BaseType(const BaseType&) = delete;
  BaseType& operator=(const BaseType&) = delete;
  virtual ~BaseType() = default;

  /// Tells whether there was such a field.
  virtual bool RemoveField(std::string_view name) = 0;
  /// The object as a value tree of the caller's own.
  virtual ara::rest::Pointer<ogm::Object> ToOGM() const;
  /// Writes all fields of the object, as one change.
  virtual void Update(const ogm::Object& fields) = 0;
  virtual void Update(const ogm::Array& objects) = 0;
  /// Removes every field that the object names.
  virtual void RemoveFields(const ogm::Object& fields) = 0;

  /// Of the store alone: what a transaction has written or removed shows after its commit.
  bool HasField(std::string_view name) const;
  /// The store itself: to be used under a `ChangeScope`, or before the object is shared.
  ogm::Object& GetOGM() noexcept { return fields_; }
  /// The value, that of the active transaction before that of the store. Throws `DataModelException` if the field is missing or of
  /// another kind.
  template <class T>
  typename T::ValueType GetFieldValue(std::string_view name) const {
    const auto lock = Lock();
    if (const auto transaction = GetLatestActiveTransaction(); transaction && transaction->Decides(name)) {
      return transaction->GetFieldValue<T>(name);
    }
    return ogm::ValueOf(ogm::Get<T>(fields_, name));
  }
  /// Empty if none is active.
  std::shared_ptr<Transaction> GetLatestActiveTransaction() const;

 protected:
  /// Holds the object against all other threads. A composite is locked before an object that it embeds.
  std::unique_lock<std::recursive_mutex> Lock() const { return std::unique_lock{mutex_}; }

 private:
  friend class BaseXObject;
  friend class ChangeScope;
  friend class Transaction;

  mutable std::recursive_mutex mutex_;  // guards the members below, and what a derived class says
  ogm::Object fields_;
  std::weak_ptr<Transaction> latestTransaction_;
};

}  // namespace zuva
