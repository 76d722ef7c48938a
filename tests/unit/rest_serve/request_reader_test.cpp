#include "serve/request_reader.h"

#include <algorithm>
#include <string_view>

#include <gtest/gtest.h>

namespace zuva::serve {
namespace {

constexpr std::string_view kPost =
    "POST /S/things/1 HTTP/1.1\r\nHost: a\r\nOrigin: http://b\r\nContent-Type: application/json\r\nContent-Length: 7\r\n\r\n{\"a\":1}";
constexpr std::string_view kChunked =
    "POST /S/things/1 HTTP/1.1\r\nHost: a\r\nOrigin: http://b\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n"
    "3;x=y\r\n{\"a\r\n4\r\n\":1}\r\n0\r\nHost: trailer\r\n\r\n";

constexpr std::string_view kNothingChunked =
    "POST /S/things/1 HTTP/1.1\r\nHost: a\r\nOrigin: http://b\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n";

/// Gives the bytes in pieces of this size, as a connection does: what is not taken comes again with the next.
ReadState Feed(RequestReader& reader, std::string_view text, std::size_t piece, std::size_t* left = nullptr) {
  std::size_t begin = 0;
  std::size_t end = 0;
  auto state = ReadState::kNeedsMore;
  while (end < text.size() && (state == ReadState::kNeedsMore || state == ReadState::kHead)) {
    end = std::min(end + piece, text.size());
    std::size_t taken = 0;
    state = reader.Take({text.data() + begin, end - begin}, taken);
    begin += taken;
  }
  if (left) *left = text.size() - begin;
  return state;
}

TEST(RequestReader, IsTheSameForEveryCutOfTheBytes) {
  for (const auto text : {kPost, kChunked, kNothingChunked}) {
    for (std::size_t piece = 1; piece <= text.size(); ++piece) {
      RequestReader reader{8192, 100};
      ASSERT_EQ(Feed(reader, text, piece), ReadState::kComplete) << piece;
      const auto& request = reader.Request();
      EXPECT_EQ(request.method, HttpMethod::kPost);
      EXPECT_EQ(request.target, "/S/things/1");
      EXPECT_EQ(request.host, "a");
      EXPECT_EQ(request.hostCount, 1U) << "a trailer is no head";
      EXPECT_EQ(request.origin, "http://b");
      EXPECT_EQ(request.body, text == kNothingChunked ? "" : "{\"a\":1}");
      EXPECT_TRUE(request.keepAlive);
    }
  }
}

TEST(RequestReader, LeavesTheNextRequestAloneAndForgetsTheOneBefore) {
  RequestReader reader{8192, 100};
  const auto text = std::string{kPost} + "\r\nGET / HTTP/1.0\r\n\r\n";
  std::size_t left = 0;
  ASSERT_EQ(Feed(reader, text, text.size(), &left), ReadState::kComplete);
  EXPECT_EQ(left, text.size() - kPost.size());
  reader.Next();
  ASSERT_EQ(Feed(reader, std::string_view{text}.substr(kPost.size()), 5), ReadState::kComplete);
  EXPECT_EQ(reader.Request().method, HttpMethod::kGet);
  EXPECT_EQ(reader.Request().hostCount, 0U);
  EXPECT_TRUE(reader.Request().body.empty());
  EXPECT_FALSE(reader.Request().keepAlive);
}

TEST(RequestReader, LimitsTheWholeHeadHoweverItComes) {
  const std::string start = "GET / HTTP/1.1\r\n";
  const std::string field = "A: 0123456789\r\n";  // 15 bytes
  std::string head = start;
  while (head.size() + 2 < 300) head += field;
  head += "\r\n";
  for (const std::size_t piece : {head.size(), field.size(), std::size_t{1}}) {
    RequestReader roomy{head.size(), 100};
    EXPECT_EQ(Feed(roomy, head, piece), ReadState::kComplete) << piece;
    RequestReader tight{head.size() - 1, 100};
    EXPECT_EQ(Feed(tight, head, piece), ReadState::kHeadTooLarge) << piece;
  }
}

TEST(RequestReader, LimitsTheBodyByItsLengthAndByItsChunks) {
  RequestReader reader{8192, 6};
  EXPECT_EQ(Feed(reader, kPost, kPost.size()), ReadState::kBodyTooLarge);
  RequestReader chunks{8192, 6};
  EXPECT_EQ(Feed(chunks, kChunked, 1), ReadState::kBodyTooLarge);
}

TEST(RequestReader, RefusesWhatIsNoRequest) {
  for (const std::string_view text :
       {"\x16\x03\x01\x02 tls \n", "GET /\r\n", "GET / HTTP/1.1x\r\n", "GET /HTTP/1.1\r\n",  // as soon as the line ends
        "GET  / HTTP/1.1\r\n\r\n", "GET / HTTP/1.1\nHost: a\n\n", "GET / HTTP/1.1\r\nHost : a\r\n\r\n",
        "GET / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n", "GET / HTTP/1.1\r\nContent-Length: -1\r\n\r\n",
        "GET / HTTP/1.1\r\nContent-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n",
        "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n",
        // What two servers may read differently, so that one of them takes a body for a request.
        "POST / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 1\r\n\r\n", "POST / HTTP/1.1\r\nContent-Length: 1, 1\r\n\r\n",
        "POST / HTTP/1.1\r\nTransfer-Encoding: chunked, identity\r\n\r\n", "POST / HTTP/1.1\r\nTransfer-Encoding: xchunked\r\n\r\n",
        "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n",
        "POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n", "GET / HTTP/1.1\r\nHost: a\r\n folded\r\n\r\n"}) {
    RequestReader reader{8192, 100};
    EXPECT_EQ(Feed(reader, text, text.size()), ReadState::kMalformed) << text;
  }
  for (const std::string_view text : {"GET / HTTP/2.0\r\n\r\n", "PRI * HTTP/2.0\r\n", "GET / HTTP/0.9\r\n"}) {
    RequestReader reader{8192, 100};
    EXPECT_EQ(Feed(reader, text, 1), ReadState::kBadVersion) << text;
  }
}

}  // namespace
}  // namespace zuva::serve
