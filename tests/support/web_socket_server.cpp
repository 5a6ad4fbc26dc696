#include "tests/support/web_socket_server.h"

#include <array>
#include <bit>
#include <utility>

namespace zentavo::testing {

namespace {

constexpr std::string_view kKeySuffix = "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";

std::string BigEndian(std::uint64_t value, int bytes) {
  std::string text;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
    text += static_cast<char>(value >> shift);
  }
  return text;
}

std::uint64_t FromBigEndian(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

using Sha1State = std::array<std::uint32_t, 5>;

std::uint32_t Sha1Round(int round, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  if (round < 20) return ((b & c) | (~b & d)) + 0x5A827999;
  if (round < 40) return (b ^ c ^ d) + 0x6ED9EBA1;
  if (round < 60) return ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC;
  return (b ^ c ^ d) + 0xCA62C1D6;
}

void Sha1Block(Sha1State& state, std::string_view block) {
  std::array<std::uint32_t, 80> words;
  for (std::size_t i = 0; i < 80; ++i) {
    words[i] = i < 16 ? static_cast<std::uint32_t>(FromBigEndian(block.substr(4 * i, 4)))
                      : std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
  }
  auto [a, b, c, d, e] = state;
  for (int round = 0; round < 80; ++round) {
    const std::uint32_t next =
        std::rotl(a, 5) + Sha1Round(round, b, c, d) + e + words[static_cast<std::size_t>(round)];
    e = d, d = c, c = std::rotl(b, 30), b = a, a = next;
  }
  const Sha1State sum{a, b, c, d, e};
  for (std::size_t i = 0; i < 5; ++i) state[i] += sum[i];
}

std::string Sha1(std::string text) {
  const std::uint64_t bits = text.size() * 8;
  text += '\x80';
  while (text.size() % 64 != 56) text += '\0';
  text += BigEndian(bits, 8);
  Sha1State state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t at = 0; at < text.size(); at += 64) {
    Sha1Block(state, std::string_view(text).substr(at, 64));
  }
  std::string digest;
  for (const std::uint32_t word : state) digest += BigEndian(word, 4);
  return digest;
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::string group(bytes.substr(at, 3));
    const std::size_t digits = group.size() + 1;
    group.resize(3);
    const std::uint64_t bits = FromBigEndian(group);
    for (std::size_t i = 0; i < 4; ++i) {
      text += i < digits ? kDigits[bits >> (18 - 6 * i) & 63] : '=';
    }
  }
  return text;
}

}  // namespace

std::string Frame(unsigned opcode, std::string_view payload, unsigned first_bits) {
  std::string frame(1, static_cast<char>(first_bits | opcode));
  if (payload.size() < 126) {
    frame += static_cast<char>(payload.size());
  } else if (payload.size() < 0x10000) {
    frame += '\x7E' + BigEndian(payload.size(), 2);
  } else {
    frame += '\x7F' + BigEndian(payload.size(), 8);
  }
  return frame.append(payload);
}

std::string CloseFrame(std::uint16_t status, std::string_view reason) {
  return Frame(kClose, BigEndian(status, 2).append(reason));
}

std::string AcceptKey(std::string_view key) {
  return Base64(Sha1(std::string(key).append(kKeySuffix)));
}

std::string SwitchingProtocols(std::string_view accept_key) {
  return std::string(
             "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
             "Sec-WebSocket-Accept: ")
      .append(accept_key)
      .append("\r\n\r\n");
}

bool WebSocketPeer::ShakeHands() {
  const std::string key = ReadRequest().Header("Sec-WebSocket-Key");
  return !key.empty() && Send(SwitchingProtocols(AcceptKey(key)));
}

bool WebSocketPeer::ReadFrame(ReceivedFrame& frame) {
  const std::string head = Receive(2);
  if (head.size() < 2) return false;
  frame.first_byte = static_cast<unsigned char>(head[0]);
  frame.masked = (head[1] & 0x80) != 0;
  std::uint64_t length = head[1] & 0x7F;
  if (length == 126) length = FromBigEndian(Receive(2));
  if (length == 127) length = FromBigEndian(Receive(8));
  const std::string mask = frame.masked ? Receive(4) : std::string(4, '\0');
  frame.payload = Receive(static_cast<std::size_t>(length));
  if (mask.size() < 4 || frame.payload.size() < length) return false;
  for (std::size_t i = 0; i < frame.payload.size(); ++i) {
    frame.payload[i] = static_cast<char>(frame.payload[i] ^ mask[i % 4]);
  }
  return true;
}

void WebSocketPeer::AnswerUntilClosed(bool echo) {
  ReceivedFrame frame;
  while (ReadFrame(frame)) {
    const unsigned opcode = frame.first_byte & 15;
    if (opcode == kClose || (echo && opcode < kClose)) Send(Frame(opcode, frame.payload));
    if (opcode == kClose) return;
  }
}

WebSocketServer::WebSocketServer(Script script)
    : HttpServer(
          [script = std::move(script)](HttpServer&, HttpPeer& connection) {
            WebSocketPeer peer(connection);
            script(peer);
          },
          AF_INET, Connections::kOneByOne) {}

}  // namespace zentavo::testing
