#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/beast/websocket/ssl.hpp>

#include "tests/support/certificate.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;
using nlohmann::json;

const json kTls{{"tls", {{"certificate", "/cert.pem"}, {"key", "/key.pem"}}}};

/// A client that trusts one certificate.
class SecureClient {
 public:
  using Stream = asio::ssl::stream<tcp::socket>;

  SecureClient(std::uint16_t port, const std::string& certificate, int newest = TLS1_3_VERSION) {
    context_.add_certificate_authority(asio::buffer(certificate));
    SSL_CTX_set_max_proto_version(context_.native_handle(), newest);
    SSL_CTX_set_min_proto_version(context_.native_handle(), TLS1_VERSION);
    SSL_CTX_set_security_level(context_.native_handle(), 0);
    stream_.emplace(io_, context_);
    stream_->set_verify_mode(asio::ssl::verify_peer);
    stream_->set_verify_callback(asio::ssl::host_name_verification{"localhost"});
    stream_->next_layer().connect({asio::ip::make_address("127.0.0.1"), port});
  }
  void Handshake() { stream_->handshake(Stream::client); }
  void Send(std::string_view bytes) { asio::write(*stream_, asio::buffer(bytes)); }
  http::response<http::string_body> Receive() {
    http::response<http::string_body> response;
    http::read(*stream_, buffer_, response);
    return response;
  }
  /// What comes until the server closes; the error that ends it.
  beast::error_code DrainError() {
    beast::error_code error;
    std::array<char, 1024> room;
    while (!error) stream_->read_some(asio::buffer(room), error);
    return error;
  }
  Stream& Get() { return *stream_; }

 private:
  asio::io_context io_;
  asio::ssl::context context_{asio::ssl::context::tls_client};
  std::optional<Stream> stream_;
  beast::flat_buffer buffer_;
};

class Tls : public testing::Test {
 protected:
  Tls() {
    const auto thing = tree.things->AddThing("writable");
    gate->Open();
    tree.Guard(*thing, gate);
    path = thing->Path();
  }

  test_support::Certificate own = test_support::MakeCertificate();
  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  test::ServedTree tree{kTls, {{"/cert.pem", own.certificate}, {"/key.pem", own.key}}};
  std::string path;
};

TEST_F(Tls, CarriesRequestsOnAKeptConnection) {
  EXPECT_TRUE(tree.Logged("Listening on https://127.0.0.1:"));
  SecureClient client{tree.port, own.certificate};
  client.Handshake();
  for (int i = 0; i < 3; ++i) {
    client.Send("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(json::parse(client.Receive().body())["services"].size(), 1U);
  }
  client.Send("POST " + path +
              " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: 14\r\nExpect: 100-continue\r\n\r\n");
  EXPECT_EQ(client.Receive().result_int(), 100U);
  client.Send("{\"type\":");
  client.Send("\"new\"}GET " + path + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(client.Receive().result_int(), 200U);
  EXPECT_EQ(json::parse(client.Receive().body()).value("type", ""), "new");
}

TEST_F(Tls, CarriesAnswersLongerThanARecord) {
  for (int i = 0; i < 400; ++i) tree.things->AddThing("thing number " + std::to_string(i));
  SecureClient client{tree.port, own.certificate};
  client.Handshake();
  client.Send("GET /S/things HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(json::parse(client.Receive().body()).size(), 401U);
  EXPECT_EQ(client.DrainError(), asio::error::eof) << "the end is told, so that a cut answer can be known";
}

TEST_F(Tls, CarriesWebSockets) {
  SecureClient client{tree.port, own.certificate};
  client.Handshake();
  beast::websocket::stream<SecureClient::Stream&> socket{client.Get()};
  socket.handshake("localhost", "/");
  socket.write(asio::buffer(json{{"action", "get"}, {"path", "/S/things"}, {"requestId", 1}}.dump()));
  beast::flat_buffer buffer;
  socket.read(buffer);
  EXPECT_EQ(json::parse(beast::buffers_to_string(buffer.data()))["data"].size(), 1U);
  std::thread stop{[this] { tree.server->Stop(true); }};
  beast::error_code error;
  socket.read(buffer, error);
  EXPECT_EQ(error, beast::websocket::error::closed);
  EXPECT_EQ(socket.reason().code, beast::websocket::close_code::going_away);
  stop.join();
}

TEST_F(Tls, TellsThatAClientHasLeftBehindWhatItSentLast) {
  const auto closed = std::make_shared<test::Gate>();
  const auto thing = tree.things->AddThing("held up");
  tree.Guard(*thing, closed);
  const auto head = "POST " + thing->Path() + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n";
  SecureClient first{tree.port, own.certificate}, second{tree.port, own.certificate};
  for (auto* const client : {&first, &second}) {
    client->Handshake();
    client->Send(head + "{}");
  }
  ASSERT_TRUE(closed->WaitForGuests(2));
  SecureClient other{tree.port, own.certificate};
  other.Handshake();
  const auto waitForTheServer = [&] {
    other.Send("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
    other.Receive();
  };
  {
    SecureClient leaves{tree.port, own.certificate, TLS1_2_VERSION};  // 1.3 sends tickets, which unread would make the close a reset
    leaves.Handshake();
    leaves.Send(head + "{}");
    waitForTheServer();  // so that what follows is not read together with the request
    leaves.Send("more");
  }
  waitForTheServer();
  closed->Open();
  EXPECT_EQ(first.Receive().result_int(), 200U);
  EXPECT_EQ(second.Receive().result_int(), 200U);
  other.Send(head + "{}");
  EXPECT_EQ(other.Receive().result_int(), 200U);
  EXPECT_EQ(closed->Guests(), 3U) << "nobody works for the one that left";
}

TEST_F(Tls, RefusesOldVersionsPlainTextAndGarbage) {
  SecureClient old{tree.port, own.certificate, TLS1_1_VERSION};
  EXPECT_THROW(old.Handshake(), boost::system::system_error);
  SecureClient twelve{tree.port, own.certificate, TLS1_2_VERSION};
  EXPECT_NO_THROW(twelve.Handshake());
  const auto answer = tree.Http().Raw("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(answer.find("HTTP/"), std::string::npos) << answer;
  tree.Http().Raw(std::string(100000, '\x16'));
  SecureClient client{tree.port, own.certificate};
  EXPECT_NO_THROW(client.Handshake());
}

TEST_F(Tls, TakesAuthenticatedEncryptionWithEphemeralKeysInItsOwnOrder) {
  std::vector<std::string> chosen;
  for (const auto* offer : {"ECDHE+CHACHA20:ECDHE+AES256+AESGCM", "ECDHE+AES256+AESGCM:ECDHE+CHACHA20", "ECDHE+AES128:!AESGCM"}) {
    SecureClient client{tree.port, own.certificate, TLS1_2_VERSION};
    SSL_set_cipher_list(client.Get().native_handle(), offer);
    beast::error_code error;
    client.Get().handshake(SecureClient::Stream::client, error);
    chosen.emplace_back(error ? "none" : SSL_get_cipher_name(client.Get().native_handle()));
  }
  EXPECT_EQ(chosen[0], chosen[1]) << "the server's order counts";
  EXPECT_EQ(chosen[2], "none");
}

TEST_F(Tls, SpeaksHttpOnlyToWhoeverNamesProtocols) {
  using namespace std::string_view_literals;
  for (const auto& [offer, answer] : {std::pair{""sv, ""sv}, {"\x02h2\x08http/1.1"sv, "http/1.1"sv}, {"\x02h2"sv, "refused"sv}}) {
    SecureClient client{tree.port, own.certificate};
    auto* const native = client.Get().native_handle();
    SSL_set_alpn_protos(native, reinterpret_cast<const unsigned char*>(offer.data()), static_cast<unsigned>(offer.size()));
    beast::error_code error;
    client.Get().handshake(SecureClient::Stream::client, error);
    const unsigned char* chosen = nullptr;
    unsigned size = 0;
    SSL_get0_alpn_selected(native, &chosen, &size);
    EXPECT_EQ(error ? "refused" : std::string(reinterpret_cast<const char*>(chosen), size), answer);
    const int reason = ERR_GET_REASON(static_cast<unsigned long>(error.value()));
    EXPECT_TRUE(!error || reason == SSL_R_TLSV1_ALERT_NO_APPLICATION_PROTOCOL) << error.message();
  }
}

TEST(TlsLimits, EndAHandshakeThatDoesNotCome) {
  const auto own = test_support::MakeCertificate();
  auto settings = kTls;
  settings["limits"] = {{"requestSeconds", 1}};
  test::ServedTree tree{settings, {{"/cert.pem", own.certificate}, {"/key.pem", own.key}}};
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(tree.Http().Raw("", std::chrono::seconds{5}), "");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{3});
}

TEST(TlsFiles, ThatCannotBeUsedStopTheStart) {
  const auto own = test_support::MakeCertificate(), other = test_support::MakeCertificate();
  const auto start = [](const std::string& certificate, const std::string& key) {
    return test::TestTree{kTls, nullptr, {{"/cert.pem", certificate}, {"/key.pem", key}}};
  };
  EXPECT_NO_THROW(start(own.certificate, own.key));
  EXPECT_ANY_THROW(start("nothing", own.key));
  EXPECT_ANY_THROW(start(own.certificate, "nothing"));
  EXPECT_ANY_THROW(start(own.certificate, other.key));
  EXPECT_ANY_THROW(test::TestTree{kTls});
}

}  // namespace
}  // namespace zuva::serve
