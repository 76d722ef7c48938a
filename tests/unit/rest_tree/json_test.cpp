#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"

namespace ara::rest::serialize {
namespace {

std::string Nested(std::size_t depth) {  // the outer object counts
  return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
}

TEST(JsonReader, RefusesWithTheReason) {
  using enum JsonError;
  const std::string bom = "\xEF\xBB\xBF{}", zeroBehind{"{}\0{}", 5}, huge = R"({"a":-1)" + std::string(400, '0') + "}";
  const std::pair<std::string, JsonError> rows[] = {
      {"", malformed},
      {R"({"a":1)", malformed},
      {bom, malformed},
      {zeroBehind, malformed},
      {"{} x", malformed},
      {R"({"a":1,})", malformed},
      {"{/**/}", malformed},
      {R"({"a":01})", malformed},
      {R"({"a":NaN})", malformed},
      {R"({"a":1e400})", malformed},
      {huge, malformed},
      {R"({"a":"\ud800"})", malformed},  // lone surrogates
      {R"({"a":"\udc00"})", malformed},
      {R"({"\ud800":1})", malformed},
      {"{\"a\":\"\xC0\xAF\"}", malformed},
      {"{\"a\":\"\x01\"}", malformed},
      {"[1]", notAnObject},
      {"5", notAnObject},
      {Nested(33), tooDeep},
      {Nested(50000), tooDeep},
      {R"({"a":1,"b":2,"a":1})", repeatedKey},
      {R"({"a":[{"b":1,"\u0062":2}]})", repeatedKey},
  };
  for (const auto& [text, error] : rows) {
    const auto object = ParseObject(text);
    EXPECT_TRUE(object.has_error() && object.error() == make_error_code(error)) << text.substr(0, 40);
  }
  EXPECT_TRUE(ParseObject(Nested(32)).has_value());
  EXPECT_THROW(JSONSerializer{}.Deserialize("{"), DataModelException);
}

TEST(Json, IsTheSameAfterReadingAndWriting) {
  const std::pair<const char*, const char*> rows[] = {
      {R"({"z":1,"a":[true,null,{"x":"\u00e4\ud83d\ude00"}],"m":{}})", "{\"z\":1,\"a\":[true,null,{\"x\":\"ä😀\"}],\"m\":{}}"},
      {R"({"zero":-0,"least":-9223372036854775808,"most":9223372036854775807})",
       R"({"zero":0,"least":-9223372036854775808,"most":9223372036854775807})"},
      {R"({"over":9223372036854775808,"under":-9223372036854775809,"point":1.0,"exponent":1e2})",
       R"({"over":9.223372e+18,"under":-9.223372e+18,"point":1,"exponent":100})"},
  };
  for (const auto& [text, written] : rows) EXPECT_EQ(ToText(**ParseObject(text)), written);
  EXPECT_EQ(ogm::Get<ogm::Real>(**ParseObject(R"({"point":1.0})"), "point").GetValue(), 1) << "no integer";
}

TEST(JsonWriter, WritesARealAsItsFloatReads) {
  const auto text = [](double value) { return ToText(ogm::Real{value}); };
  for (const auto& [value, written] : {std::pair{12.5, "12.5"},
                                       {double{0.1F}, "0.1"},
                                       {80.0, "80"},
                                       {-0.0, "-0"},
                                       {16777216.0, "16777216"},
                                       {1e300, "1e+300"},
                                       {std::nan(""), "null"},
                                       {-std::numeric_limits<double>::infinity(), "null"}}) {
    EXPECT_EQ(text(value), written);
  }
  for (const float edge : {std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()}) {
    EXPECT_EQ(std::strtof(text(double{edge}).c_str(), nullptr), edge);
  }
  ogm::Object object;
  object.Append(MakePointer<ogm::Field>("none"));
  EXPECT_EQ(ToText(object), R"({"none":null})");
}

TEST(JsonWriter, EscapesAndReplacesWhatMustBe) {
  const std::string bad = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> rows[] = {
      {"say \"\\\" /", R"(say \"\\\" /)"},
      {std::string{"\0\b\t\n\f\r\x1F\x7F", 8}, std::string{R"(\u0000\b\t\n\f\r\u001f)"} + "\x7F"},
      {"ä€😀", "ä€😀"},
      {"a\xFFz", "a" + bad + "z"},
      {"\xC0\xAF", bad + bad},                      // overlong
      {"\xED\xA0\x80", bad + bad + bad},            // surrogate
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},  // beyond U+10FFFF
      {"\xE2\x82", bad + bad},                      // cut off
      {"\xE2\"\x82\xAC", bad + "\\\"" + bad + bad},
  };
  for (const auto& [text, written] : rows) EXPECT_EQ(ToText(ogm::String{text}), '"' + written + '"');
}

}  // namespace
}  // namespace ara::rest::serialize
