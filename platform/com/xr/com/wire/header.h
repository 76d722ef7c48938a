#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "xr/com/wire/bytes.h"
#include "xr/com/wire/error.h"

namespace xr::com::wire {

inline constexpr std::size_t kHeaderSize = 16;
/// The biggest message that is sent or taken, header included.
inline constexpr std::size_t kMaximumMessage = 65536;
inline constexpr std::uint8_t kProtocolVersion = 1;

enum class Message_type : std::uint8_t {
  request = 0x00,
  request_no_return = 0x01,
  notification = 0x02,
  response = 0x80,
  error = 0x81,
};

/// The header of a SOME/IP message (AUTOSAR PRS_SOMEIP_00030). The length field is not held: it follows from the payload.
struct Header {
  std::uint16_t service = 0;
  std::uint16_t method = 0;
  std::uint16_t client = 0;
  std::uint16_t session = 0;
  std::uint8_t protocol_version = kProtocolVersion;
  std::uint8_t interface_version = 0;
  Message_type type = Message_type::request;
  std::uint8_t code = 0;

  friend bool operator==(const Header&, const Header&) = default;
};

/// Whether the message is a segment of a bigger one (PRS_SOMEIP_00367).
constexpr bool is_segment(Message_type type) {
  return (static_cast<std::uint8_t>(type) & 0x20U) != 0;
}

/// A header together with the size of the whole message, as its length field promises it.
struct Framed_header {
  Header header;
  std::size_t message_size;
};

/// Reads the header at the front of `bytes`, which need not hold the rest of the message. The protocol version is not looked at.
/// Fails with cut_off, wrong_length (a message shorter than its header) or too_big.
Result<Framed_header> decode_header(Bytes bytes);

std::array<unsigned char, kHeaderSize> encode_header(const Header& header, std::size_t payloadSize);

/// A whole message.
std::vector<unsigned char> encode_message(const Header& header, Bytes payload);

/// One message inside a buffer that it does not own.
struct Message {
  Header header;
  Bytes payload;
};

/// Takes the first message off a datagram, which may hold several (PRS_SOMEIP_00142); `rest` then begins behind it.
/// On failure `rest` is empty: nothing behind a broken message can be trusted.
Result<Message> take_message(Bytes& rest);

}  // namespace xr::com::wire
