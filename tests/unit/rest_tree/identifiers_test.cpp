#include <gtest/gtest.h>

#include <string>

#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"

namespace ara::rest {
namespace {

Uri Build(const std::string& text) {
  return Uri::Builder{text, GetDefaultAllocator()}.ToUri();
}

TEST(Uuids, NameBasedOnesAreThoseOfTheUrlNamespace) {
  // Made with an independent implementation.
  EXPECT_EQ(Uuid::MakeV5("http://example.com/").ToString(), "0a300ee9-f9e4-5697-a51a-efc7fafaba67");
  EXPECT_EQ(Uuid::MakeV5("/a/b"), Uuid::MakeV5("/a/b"));
}

TEST(Uuids, RandomOnesDifferAndReadBack) {
  const auto uuid = Uuid::MakeV4();
  EXPECT_NE(uuid, Uuid::MakeV4());
  EXPECT_EQ(uuid.GetBytes()[6] >> 4, 4);
  EXPECT_EQ(Uuid::Parse(uuid.ToString()), uuid);
}

TEST(Uuids, OnlyTheCanonicalFormIsRead) {
  EXPECT_TRUE(Uuid::Parse("0A300EE9-F9E4-5697-A51A-EFC7FAFABA67"));
  for (const auto* const text :
       {"", "0a300ee9f9e45697a51aefc7fafaba67", "{0a300ee9-f9e4-5697-a51a-efc7fafaba67}", "0a300ee9-f9e4-5697-a51a-efc7fafaba6",
        "0a300ee9-f9e4-5697-a51a-efc7fafaba678", "0a300ee9-f9e4-5697-a51a_efc7fafaba67", "0a300ee9-f9e4-5697-a51a-efc7fafaba6g",
        "-a300ee9-f9e4-5697-a51a-efc7fafaba67"}) {
    EXPECT_FALSE(Uuid::Parse(text)) << text;
  }
}

TEST(Uris, AreCheckedWhenBuilt) {
  EXPECT_TRUE(Uri::Builder{GetDefaultAllocator()}.ToUri().IsEmpty());
  EXPECT_EQ(Build("http://[::1]/").ToString(true), "http://[::1]/");
  EXPECT_EQ(Build("/a%20b").ToString(false), "/a b");
  EXPECT_THROW(Build("/a b"), InvalidArgumentException);
  EXPECT_THROW(Build("http://[::1/"), InvalidArgumentException);
  EXPECT_THROW((Uri::Builder{"/a", nullptr}.ToUri()), LogicException);
}

}  // namespace
}  // namespace ara::rest
