#include "serve/request_reader.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>

#include "serve/text.h"

namespace zuva::serve {

namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

HttpMethod MethodOf(http::verb verb) {
  switch (verb) {
    case http::verb::get:
      return HttpMethod::kGet;
    case http::verb::head:
      return HttpMethod::kHead;
    case http::verb::post:
      return HttpMethod::kPost;
    case http::verb::options:
      return HttpMethod::kOptions;
    case http::verb::put:
      return HttpMethod::kPut;
    case http::verb::delete_:
      return HttpMethod::kDelete;
    default:
      return HttpMethod::kOther;
  }
}

/// Several fields of one name make one list (RFC 9110 section 5.3).
void AddToList(std::string& list, std::string_view value) {
  if (!list.empty()) list += ", ";
  list += value;
}

/// Whether a line of the head goes on in the next one, which nobody may send any more (RFC 9112 section 5.2).
bool HasFoldedLine(std::string_view head) {
  head = head.substr(0, head.find("\r\n\r\n"));
  return head.find("\r\n ") != std::string_view::npos || head.find("\r\n\t") != std::string_view::npos;
}

/// Looks at how the request line ends. Beast itself looks only when the whole head is there; fine as long as the line is not over.
ReadState CheckLine(std::string_view head) {
  constexpr std::string_view kVersion = " HTTP/0.0";
  const auto end = head.find('\n');
  if (end == std::string_view::npos) return ReadState::kNeedsMore;
  auto line = head.substr(0, end);
  if (!line.ends_with('\r') || line.size() <= kVersion.size()) return ReadState::kMalformed;
  line.remove_suffix(1);
  const auto version = line.substr(line.size() - kVersion.size());
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (!version.starts_with(" HTTP/") || !isDigit(version[6]) || version[7] != '.' || !isDigit(version[8])) return ReadState::kMalformed;
  return version[6] == '1' ? ReadState::kHead : ReadState::kBadVersion;
}

/// Whether a chunked body may end here with bytes that are still to come. Beast asserts that it does not see the last chunk's line again
/// without the empty line behind it, so what looks like one waits for both.
bool MayBeCutLastChunk(std::string_view body) {
  constexpr std::string_view kShortest = "0\r\n\r\n";
  return body.starts_with('0') && body.size() < kShortest.size();
}

}  // namespace

/// Writes what it hears into the request at hand; fields that nobody asks for are dropped at once.
class RequestReader::Parser final : public http::basic_parser<true> {
 public:
  Parser(HttpRequest& request, std::size_t headerBytes, std::size_t bodyBytes) : request_{request} {
    eager(true);
    header_limit(static_cast<std::uint32_t>(headerBytes));
    body_limit(bodyBytes);
  }

 private:
  void on_request_impl(http::verb verb, beast::string_view, beast::string_view target, int version, beast::error_code&) override {
    request_.method = MethodOf(verb);
    request_.target = target;
    request_.version = static_cast<unsigned>(version);
  }
  void on_field_impl(http::field name, beast::string_view, beast::string_view value, beast::error_code& error) override {
    if (headComplete_) return;  // a trailer says nothing here
    switch (name) {
      // Beast reads these two itself, but lets pass what another server on the way may understand differently.
      case http::field::content_length:
        if (std::exchange(hasLength_, true) || value.find(',') != beast::string_view::npos) error = http::error::bad_content_length;
        break;
      case http::field::transfer_encoding:
        if (std::exchange(hasCoding_, true) || request_.version < 11 || !EqualsIgnoringCase(value, "chunked")) {
          error = http::error::bad_transfer_encoding;
        }
        break;
      case http::field::host:
        ++request_.hostCount;
        request_.host = value;
        break;
      case http::field::origin:
        AddToList(request_.origin, value);
        break;
      case http::field::content_type:
        AddToList(request_.contentType, value);
        break;
      case http::field::if_match:
        request_.hasIfMatch = true;
        AddToList(request_.ifMatch, value);
        break;
      case http::field::if_none_match:
        AddToList(request_.ifNoneMatch, value);
        break;
      case http::field::expect:
        request_.expectsContinue = request_.version >= 11 && EqualsIgnoringCase(value, "100-continue");
        break;
      case http::field::upgrade:
        namesWebSocket_ = namesWebSocket_ || HasToken(value, "websocket");
        break;
      case http::field::access_control_request_method:
        request_.requestedMethod = value;
        break;
      case http::field::sec_websocket_key:
        AddToList(request_.webSocketKey, value);
        break;
      case http::field::sec_websocket_protocol:
        AddToList(request_.webSocketProtocols, value);
        break;
      case http::field::authorization:
        AddToList(request_.authorization, value);
        break;
      case http::field::accept:
        AddToList(request_.accept, value);
        break;
      case http::field::sec_websocket_version:
        AddToList(request_.webSocketVersion, value);
        break;
      default:
        break;
    }
  }
  void on_header_impl(beast::error_code&) override {
    headComplete_ = true;
    request_.keepAlive = keep_alive();
    request_.upgrade = upgrade() && namesWebSocket_;
  }
  std::size_t on_body_impl(beast::string_view body, beast::error_code&) override {
    request_.body += body;
    return body.size();
  }
  std::size_t on_chunk_body_impl(std::uint64_t, beast::string_view body, beast::error_code& error) override {
    return on_body_impl(body, error);
  }
  void on_body_init_impl(const boost::optional<std::uint64_t>&, beast::error_code&) override {}
  void on_chunk_header_impl(std::uint64_t, beast::string_view, beast::error_code&) override {}
  void on_finish_impl(beast::error_code&) override {}
  void on_response_impl(int, beast::string_view, int, beast::error_code&) override {}

  HttpRequest& request_;
  bool headComplete_ = false;
  bool namesWebSocket_ = false;
  bool hasLength_ = false;
  bool hasCoding_ = false;
};

struct RequestReader::Slot {
  std::optional<Parser> parser;
};

RequestReader::RequestReader(std::size_t headerBytes, std::size_t bodyBytes)
    : headerBytes_{headerBytes}, bodyBytes_{bodyBytes}, slot_{std::make_unique<Slot>()} {
  Next();
}

RequestReader::~RequestReader() = default;

void RequestReader::Next() {
  request_.Clear();
  begun_ = headReported_ = lineChecked_ = false;
  headBytes_ = 0;
  slot_->parser.emplace(request_, headerBytes_, bodyBytes_);
}

ReadState RequestReader::Take(std::span<const char> bytes, std::size_t& taken) {
  taken = 0;
  if (!begun_) {  // an empty line before a request is no fault (RFC 9112 section 2.2)
    while (taken < bytes.size() && (bytes[taken] == '\r' || bytes[taken] == '\n')) ++taken;
    bytes = bytes.subspan(taken);
  }
  if (bytes.empty()) return ReadState::kNeedsMore;
  begun_ = true;
  auto& parser = *slot_->parser;
  while (!parser.is_done() && !bytes.empty()) {
    const bool inHead = !parser.is_header_done();
    if (!inHead && parser.chunked() && MayBeCutLastChunk({bytes.data(), bytes.size()})) break;
    // Beast's own limit starts anew at each call, so the head is shown no more than it may still take.
    const auto window = inHead ? bytes.first(std::min(bytes.size(), headerBytes_ - headBytes_)) : bytes;
    const std::string_view start = headBytes_ == 0 ? std::string_view{window.data(), window.size()} : std::string_view{};
    beast::error_code error;
    const auto used = parser.put(boost::asio::const_buffer{window.data(), window.size()}, error);
    taken += used;
    bytes = bytes.subspan(used);
    if (inHead) {
      headBytes_ += used;
      if (HasFoldedLine({window.data(), used})) return ReadState::kMalformed;
    }
    if (error == http::error::header_limit) return ReadState::kHeadTooLarge;
    if (error == http::error::body_limit) return ReadState::kBodyTooLarge;
    if (error == http::error::bad_version && CheckLine(start) == ReadState::kBadVersion) return ReadState::kBadVersion;
    if (error && error != http::error::need_more) return ReadState::kMalformed;
    if (inHead && !parser.is_header_done() && !lineChecked_) {
      const auto line = CheckLine(start);
      if (line == ReadState::kMalformed || line == ReadState::kBadVersion) return line;
      lineChecked_ = line == ReadState::kHead;
    }
    if (!parser.is_header_done() && bytes.size() >= headerBytes_ - headBytes_) return ReadState::kHeadTooLarge;
    if (error == http::error::need_more) break;
  }
  if (parser.is_done()) return ReadState::kComplete;
  if (parser.is_header_done() && !std::exchange(headReported_, true)) return ReadState::kHead;
  return ReadState::kNeedsMore;
}

}  // namespace zuva::serve
