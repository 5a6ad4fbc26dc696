// The system's own routines for this keep the identity for the whole process; it belongs to the
// host.
#include "zentavo/platform/event_log.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

constexpr const char* kLoggerPath = "/dev/log";
// What loggers take in one piece, with room for what stands in front.
constexpr std::size_t kMaxMessage = 30'000;

constexpr std::uint16_t kError = 1;
constexpr std::uint16_t kWarning = 2;
constexpr std::uint16_t kInformation = 4;

int Severity(std::uint16_t type) {
  switch (type) {
    case kError: return LOG_ERR;
    case kWarning: return LOG_WARNING;
    case kInformation: return LOG_INFO;
    default: return LOG_NOTICE;
  }
}

// "Nov  3 14:05:09 ", by the local clock and always in English.
std::string TimeStamp() {
  constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const time_t now = time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::snprintf(text, sizeof text, "%s %2d %02d:%02d:%02d ", kMonths[local.tm_mon], local.tm_mday,
                local.tm_hour, local.tm_min, local.tm_sec);
  return text;
}

// At most kMaxMessage bytes, no character cut, on one line.
std::string OneLine(std::u16string_view message) {
  std::string text = PathBytes(message);
  if (text.size() > kMaxMessage) {
    std::size_t end = kMaxMessage;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text.resize(end);
  }
  std::replace_if(
      text.begin(), text.end(),
      [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }, ' ');
  return text;
}

std::string Record(std::u16string_view source, const SystemEvent& event) {
  const int severity = Severity(event.type);
  std::string text("<");
  text.append(std::to_string(LOG_USER | severity)).append(">").append(TimeStamp());
  text.append(PathBytes(source)).append("[").append(std::to_string(getpid())).append("]: ");
  if (severity == LOG_NOTICE) text.append("type ").append(std::to_string(event.type)).append(", ");
  text.append("event ").append(std::to_string(static_cast<std::int32_t>(event.id)));
  text.append(", category ").append(std::to_string(event.category)).append(": ");
  return text + OneLine(event.message.substr(0, event.message.find(u'\0')));
}

// Returns whether the logger behind `address` took it.
bool Send(const sockaddr_un& address, int kind, const std::string& record) {
  const int logger = socket(AF_UNIX, kind | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (logger == -1) return false;
  const bool sent =
      connect(logger, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      send(logger, record.data(), record.size(), MSG_NOSIGNAL) != -1;
  close(logger);
  return sent;
}

}  // namespace

void ReportSystemEvent(std::u16string_view source, const SystemEvent& event,
                       std::u16string_view log) {
  const std::string path = log.empty() ? kLoggerPath : PathBytes(log);
  sockaddr_un address{};
  if (path.empty() || path.size() >= sizeof address.sun_path) return;
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const std::string record = Record(source, event);
  // Older loggers listen on a stream, where a zero byte ends a record.
  if (!Send(address, SOCK_DGRAM, record)) Send(address, SOCK_STREAM, record + '\0');
}

}  // namespace zentavo::platform
