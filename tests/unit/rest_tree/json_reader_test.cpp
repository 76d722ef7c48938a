#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"

namespace ara::rest::serialize {
namespace {

std::string Nested(std::size_t depth) {  // the outer object counts
  return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
}

struct Refused {
  const char* name;
  std::string text;
  JsonError error;
};
void PrintTo(const Refused& refused, std::ostream* out) {
  *out << refused.name;
}

class JsonReaderRefuses : public testing::TestWithParam<Refused> {};

TEST_P(JsonReaderRefuses, TheText) {
  const auto object = ParseObject(GetParam().text);
  ASSERT_TRUE(object.has_error());
  EXPECT_EQ(object.error(), make_error_code(GetParam().error)) << object.error().message();
}

INSTANTIATE_TEST_SUITE_P(
    Texts, JsonReaderRefuses,
    testing::Values(Refused{"Empty", "", JsonError::malformed}, Refused{"Unfinished", R"({"a":1)", JsonError::malformed},
                    Refused{"ByteOrderMark", "\xEF\xBB\xBF{}", JsonError::malformed},
                    Refused{"ZeroByteBehind", std::string{"{}\0{}", 5}, JsonError::malformed},
                    Refused{"TextBehind", "{} x", JsonError::malformed}, Refused{"TrailingComma", R"({"a":1,})", JsonError::malformed},
                    Refused{"Comment", "{/**/}", JsonError::malformed}, Refused{"LeadingZero", R"({"a":01})", JsonError::malformed},
                    Refused{"NotANumber", R"({"a":NaN})", JsonError::malformed},
                    Refused{"BeyondDouble", R"({"a":1e400})", JsonError::malformed},
                    Refused{"HugeInteger", R"({"a":-1)" + std::string(400, '0') + "}", JsonError::malformed},
                    Refused{"LoneHighSurrogate", R"({"a":"\ud800"})", JsonError::malformed},
                    Refused{"LoneLowSurrogate", R"({"a":"\udc00"})", JsonError::malformed},
                    Refused{"SurrogateInKey", R"({"\ud800":1})", JsonError::malformed},
                    Refused{"BadUtf8", "{\"a\":\"\xC0\xAF\"}", JsonError::malformed},
                    Refused{"RawControl", "{\"a\":\"\x01\"}", JsonError::malformed}, Refused{"Array", "[1]", JsonError::notAnObject},
                    Refused{"Scalar", "5", JsonError::notAnObject}, Refused{"TooDeep", Nested(33), JsonError::tooDeep},
                    Refused{"VeryDeep", Nested(50000), JsonError::tooDeep},
                    Refused{"RepeatedKey", R"({"a":1,"b":2,"a":1})", JsonError::repeatedKey},
                    Refused{"RepeatedKeyInside", R"({"a":[{"b":1,"\u0062":2}]})", JsonError::repeatedKey}),
    [](const auto& row) { return row.param.name; });

TEST(JsonReader, KeepsOrderAndNesting) {
  const std::string text = R"({"z":1,"a":[true,null,{"x":"\u00e4\ud83d\ude00"}],"m":{}})";
  const auto object = ParseObject(text);
  ASSERT_TRUE(object.has_value());
  EXPECT_EQ(ToText(**object), "{\"z\":1,\"a\":[true,null,{\"x\":\"ä😀\"}],\"m\":{}}");
}

TEST(JsonReader, TakesTheDeepestNestingAllowed) {
  EXPECT_TRUE(ParseObject(Nested(32)).has_value());
}

TEST(JsonReader, TellsIntegersFromReals) {
  const auto object = ParseObject(R"({"zero":-0,"least":-9223372036854775808,"most":9223372036854775807,"over":9223372036854775808,)"
                                  R"("under":-9223372036854775809,"point":1.0,"exponent":1e2})");
  ASSERT_TRUE(object.has_value());
  EXPECT_EQ(ogm::Get<ogm::Int>(**object, "zero").GetValue(), 0);
  EXPECT_EQ(ogm::Get<ogm::Int>(**object, "least").GetValue(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ogm::Get<ogm::Int>(**object, "most").GetValue(), std::numeric_limits<std::int64_t>::max());
  EXPECT_DOUBLE_EQ(ogm::Get<ogm::Real>(**object, "over").GetValue(), 9223372036854775808.0);
  EXPECT_DOUBLE_EQ(ogm::Get<ogm::Real>(**object, "under").GetValue(), -9223372036854775808.0);
  EXPECT_DOUBLE_EQ(ogm::Get<ogm::Real>(**object, "point").GetValue(), 1);
  EXPECT_DOUBLE_EQ(ogm::Get<ogm::Real>(**object, "exponent").GetValue(), 100);
}

TEST(JsonReader, SerializerThrowsWithTheReason) {
  try {
    JSONSerializer{}.Deserialize("{");
    FAIL();
  } catch (const DataModelException& error) {
    EXPECT_STREQ(error.what(), "malformed JSON");
  }
}

}  // namespace
}  // namespace ara::rest::serialize
