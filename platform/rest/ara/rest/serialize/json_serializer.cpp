#include "ara/rest/serialize/json_serializer.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace ara::rest::serialize {
namespace {

class ErrorCategory final : public boost::system::error_category {
 public:
  const char* name() const noexcept override { return "json"; }
  std::string message(int code) const override {
    switch (static_cast<JsonError>(code)) {
      case JsonError::malformed:
        return "malformed JSON";
      case JsonError::notAnObject:
        return "not a JSON object";
      case JsonError::tooDeep:
        return "JSON nested too deep";
      case JsonError::repeatedKey:
        return "repeated key in a JSON object";
    }
    return "unknown JSON error";
  }
};

// Builds the tree from the parser's events. The parser itself is iterative, so depth costs no stack, and it refuses bad UTF-8, lone
// surrogates and numbers beyond a double.
class TreeBuilder final : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit TreeBuilder(std::size_t depth) : depth_{depth} {}

  bool null() override { return Put(MakePointer<ogm::Null>()); }
  bool boolean(bool value) override { return Put(MakePointer<ogm::Bool>(value)); }
  bool number_integer(std::int64_t value) override { return Put(MakePointer<ogm::Int>(value)); }
  bool number_unsigned(std::uint64_t value) override {
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return Put(MakePointer<ogm::Real>(static_cast<double>(value)));
    }
    return Put(MakePointer<ogm::Int>(static_cast<std::int64_t>(value)));
  }
  bool number_float(double value, const std::string&) override { return Put(MakePointer<ogm::Real>(value)); }
  bool string(std::string& value) override { return Put(MakePointer<ogm::String>(std::move(value))); }
  bool binary(nlohmann::json::binary_t&) override { return false; }

  bool start_object(std::size_t) override {
    if (open_.size() == depth_) return Fail(JsonError::tooDeep);
    auto object = MakePointer<ogm::Object>();
    auto* const raw = object.get();
    if (!root_) {
      root_ = std::move(object);
    } else if (!Put(std::move(object))) {
      return false;
    }
    open_.push_back({raw, nullptr});
    return true;
  }
  bool start_array(std::size_t) override {
    if (open_.size() == depth_) return Fail(JsonError::tooDeep);
    auto array = MakePointer<ogm::Array>();
    auto* const raw = array.get();
    if (!Put(std::move(array))) return false;
    open_.push_back({nullptr, raw});
    return true;
  }
  bool key(std::string& name) override {
    key_ = std::move(name);
    return true;
  }
  bool end_object() override {
    const bool unique = HasUniqueKeys(*open_.back().object);
    open_.pop_back();
    return unique || Fail(JsonError::repeatedKey);
  }
  bool end_array() override {
    open_.pop_back();
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return Fail(JsonError::malformed); }

  JsonError Error() const noexcept { return error_; }
  Pointer<ogm::Object> Take() noexcept { return std::move(root_); }

 private:
  struct Level {
    ogm::Object* object;
    ogm::Array* array;
  };

  // Sorted once, so that a body of nothing but keys costs no more than its length allows.
  static bool HasUniqueKeys(const ogm::Object& object) {
    std::vector<std::string_view> names;
    names.reserve(object.GetFields().size());
    for (const auto& field : object) names.push_back(field.GetName());
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) == names.end();
  }

  bool Fail(JsonError error) {
    error_ = error;
    return false;
  }
  bool Put(Pointer<ogm::Value> value) {
    if (open_.empty()) return Fail(JsonError::notAnObject);
    const auto& level = open_.back();
    if (level.object) {
      level.object->Append(std::move(key_), std::move(value));
    } else {
      level.array->Append(std::move(value));
    }
    return true;
  }

  std::size_t depth_;
  Pointer<ogm::Object> root_;
  std::vector<Level> open_;
  std::string key_;
  JsonError error_ = JsonError::malformed;
};

}  // namespace

boost::system::error_code make_error_code(JsonError error) noexcept {
  static const ErrorCategory category;
  return {static_cast<int>(error), category};
}

boost::system::result<Pointer<ogm::Object>> ParseObject(std::string_view text, const JsonLimits& limits) {
  // The parser skips a byte order mark and takes a zero byte for the end of the text.
  if (text.starts_with("\xEF\xBB\xBF") || text.find('\0') != std::string_view::npos) return make_error_code(JsonError::malformed);
  TreeBuilder builder{limits.depth};
  if (!nlohmann::json::sax_parse(text, &builder)) return make_error_code(builder.Error());
  return builder.Take();
}

Pointer<ogm::Object> JSONSerializer::Deserialize(const std::string& text) const {
  auto object = ParseObject(text);
  if (!object) throw DataModelException{object.error().message()};
  return std::move(*object);
}

}  // namespace ara::rest::serialize
