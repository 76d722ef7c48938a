#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "ara/rest/serialize/json_writer.h"

namespace ara::rest::serialize {
namespace {

std::string TextOf(const std::string& text) {
  return ToText(ogm::String{text});
}
std::string TextOf(double value) {
  return ToText(ogm::Real{value});
}

TEST(JsonWriter, WritesARealAsItsFloatReads) {
  EXPECT_EQ(TextOf(12.5), "12.5");
  EXPECT_EQ(TextOf(double{0.1F}), "0.1");
  EXPECT_EQ(TextOf(80), "80");
  EXPECT_EQ(TextOf(-0.0), "-0");
  EXPECT_EQ(TextOf(double{16777216.0F}), "16777216");
  EXPECT_EQ(std::stof(TextOf(double{std::numeric_limits<float>::max()})), std::numeric_limits<float>::max());
  EXPECT_EQ(std::strtof(TextOf(double{std::numeric_limits<float>::denorm_min()}).c_str(), nullptr),
            std::numeric_limits<float>::denorm_min());
}

TEST(JsonWriter, KeepsARealThatNoFloatHolds) {
  EXPECT_EQ(TextOf(1e300), "1e+300");
}

TEST(JsonWriter, WritesNullForWhatJsonLacks) {
  EXPECT_EQ(TextOf(std::nan("")), "null");
  EXPECT_EQ(TextOf(-std::numeric_limits<double>::infinity()), "null");
  ogm::Object object;
  object.Append(MakePointer<ogm::Field>("none"));
  EXPECT_EQ(ToText(object), R"({"none":null})");
}

TEST(JsonWriter, EscapesWhatMustBe) {
  EXPECT_EQ(TextOf("say \"\\\" /"), R"("say \"\\\" /")");
  EXPECT_EQ(TextOf(std::string{"\0\b\t\n\f\r\x1F\x7F", 8}), std::string{R"("\u0000\b\t\n\f\r\u001f)"} + "\x7F\"");
}

TEST(JsonWriter, ReplacesBytesThatAreNotUtf8) {
  const std::string bad = "\xEF\xBF\xBD";
  EXPECT_EQ(TextOf("ä€😀"), "\"ä€😀\"");
  EXPECT_EQ(TextOf("a\xFFz"), "\"a" + bad + "z\"");
  EXPECT_EQ(TextOf("\xC0\xAF"), '"' + bad + bad + '"');                      // overlong
  EXPECT_EQ(TextOf("\xED\xA0\x80"), '"' + bad + bad + bad + '"');            // surrogate
  EXPECT_EQ(TextOf("\xF4\x90\x80\x80"), '"' + bad + bad + bad + bad + '"');  // beyond U+10FFFF
  EXPECT_EQ(TextOf("\xE2\x82"), '"' + bad + bad + '"');                      // cut off
  EXPECT_EQ(TextOf("\xE2\"\x82\xAC"), '"' + bad + "\\\"" + bad + bad + '"');
}

}  // namespace
}  // namespace ara::rest::serialize
