#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ara/rest/allocator.h"
#include "ara/rest/ogm.h"
#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"
#include "zuva/server_element.h"
#include "zuva/server_reply.h"

namespace zuva::server {

/// One property of an element, as the REST model tells it.
struct Property {
  enum class Post : std::uint8_t { no, yes, required };

  std::string_view name;
  ara::rest::ogm::Kind kind;
  std::span<const std::string_view> words = {};  // of the text, or of the array's items; empty: any text
  double minimum = 0, maximum = 0;               // of numbers, both inclusive
  Post post = Post::no;

  bool HasWord(std::string_view word) const;
  /// A not-a-number is in range: it is neither below nor above.
  bool InRange(double value) const { return !(value < minimum) && !(value > maximum); }
};

/// What sets one element class apart from the others.
struct ElementModel {
  std::string_view className;    // the name of all objects of the class but reset objects, such as "ViewObject"
  std::string_view resourceUri;  // such as "/ChargingManagementCore/views"
  std::span<const Property> properties;

  /// Null if there is no such property.
  const Property* Find(std::string_view name) const;
  bool IsWritable() const;
};

using WordList = std::vector<std::string, ara::rest::StdAllocator<std::string>>;

/// The check of a posted object against the model: a missing required property first, then each posted field in the client's order.
/// The first fault answers `reply` and gives false. "id" may always be posted and is never looked at.
bool CheckPosted(const ElementModel& model, const ara::rest::ogm::Object& posted, zuva::ServerReply& reply);

/// The base of all element classes: typed, checked writes of the model's properties, and embedded objects.
///
/// A setter throws `std::domain_error` "Unsupported type: " and the word, or "Value out of range", before anything has changed. It adds a
/// missing field. Its result is whether the value changed. A word never forces an announcement; any other value that has just been added
/// does, so that it is told even if it equals the default. One call is one event, or part of the event of a `zuva::ChangeScope` around it.
/// Any thread; a name that the model lacks, or that has another kind, is `std::logic_error`.
class ModelElement : public zuva::ServerElement {
 public:
  const ElementModel& Model() const noexcept { return model_; }

  bool SetWord(std::string_view name, const std::string& word);  // a free text where the property has no words
  bool SetNumber(std::string_view name, std::int64_t value);
  bool SetReal(std::string_view name, double value);
  bool SetFlag(std::string_view name, bool value);
  bool SetWords(std::string_view name, std::span<const std::string> words);
  /// Removes the field if it is there.
  void Unset(std::string_view name);

  /// The value, if the field exists.
  template <class T>
  std::optional<typename T::ValueType> Read(std::string_view name) const {
    const auto lock = Lock();
    if (!HasField(name)) return std::nullopt;
    return GetFieldValue<T>(name);
  }
  /// The text, empty if the field does not exist.
  std::string GetWord(std::string_view name) const { return Read<ara::rest::ogm::String>(name).value_or(std::string{}); }
  /// Whether `GetWord` would give this word; copies nothing.
  bool HasWord(std::string_view name, std::string_view word) const;
  /// The words of an array, none if the field does not exist.
  WordList GetWords(std::string_view name) const;

  /// Puts another object into this one under `name`: readers see it as it is at that moment. Only before this object is reachable.
  /// Throws `ara::rest::InvalidArgumentException` "ptr is null" for none.
  void Embed(std::string_view name, std::shared_ptr<ModelElement> object);
  /// The object embedded under `name`, or null.
  std::shared_ptr<zuva::ServerElement> FindEmbedded(std::string_view name) const;

  /// The object's tree, with each embedded object in its present state. Holds no lock of this object while it asks the embedded ones.
  ara::rest::Pointer<ara::rest::ogm::Object> ToOGM() const override;

 protected:
  /// `model` must outlive the object. The name is the object's own, not the model's.
  ModelElement(const ElementModel& model, const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name);

 private:
  const Property& Require(std::string_view name, ara::rest::ogm::Kind kind) const;

  const ElementModel& model_;
};

/// The URI of an element: the resource's, a slash and the identifier.
ara::rest::Uri ElementUri(std::string_view resourceUri, const ara::rest::Uuid& uuid);

/// Makes an element of the class `T`; an empty URI stands for the one that follows from the resource and the identifier.
template <class T>
std::shared_ptr<T> MakeElement(std::string name, const ara::rest::Uuid& uuid, const ara::rest::Uri& uri) {
  if (uri.IsEmpty()) return ara::rest::MakeSharedPointer<T>(ElementUri(T::kModel.resourceUri, uuid), uuid, std::move(name));
  return ara::rest::MakeSharedPointer<T>(uri, uuid, std::move(name));
}

}  // namespace zuva::server
