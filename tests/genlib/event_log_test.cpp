#include "zentavo/genlib/event_log.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/temporary_folder.h"
#include "zentavo/platform/event_log.h"

#ifndef _WIN32
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#endif

namespace zentavo {
namespace {

TEST(EventLog, NeverRaises) {
  WriteToWindowsEventLog(1, u"A test of zentavo", 4);
  WriteToWindowsEventLog(-1, u"", std::numeric_limits<std::int32_t>::max());
  platform::ReportSystemEvent(u"Zentavo", {4, 1000, 1, u"nobody listens"}, u"/nowhere");
  platform::ReportSystemEvent(u"Zentavo", {4, 1000, 1, u"too long"}, String(5000, u'x'));
}

#ifndef _WIN32

// A logger of one record.
class Logger {
 public:
  explicit Logger(int kind) : socket_(socket(AF_UNIX, kind, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = ToUtf8(Path());
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    if (kind == SOCK_STREAM) listen(socket_, 1);
  }
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  ~Logger() { close(socket_); }

  String Path() const { return folder_ / u"log"; }
  std::string Receive(int from) const {
    std::string record(70'000, '\0');
    record.resize(static_cast<std::size_t>(recv(from, record.data(), record.size(), 0)));
    return record;
  }
  std::string Datagram() const { return Receive(socket_); }
  std::string OneConnection() const {
    const int accepted = accept(socket_, nullptr, nullptr);
    std::string record = Receive(accepted);
    close(accepted);
    return record;
  }

 private:
  testing::TemporaryFolder folder_;
  int socket_;
};

// The record without its time and process.
std::string Shortened(const std::string& record) {
  const std::size_t behind_priority = record.find('>') + 1;
  const std::size_t source = record.find("Zentavo[");
  return record.substr(0, behind_priority) + record.substr(source, 8) +
         record.substr(record.find(']'));
}

TEST(EventLog, RecordsSayWhatHappened) {
  struct Row {
    std::uint16_t type;
    std::uint32_t id;
    StringView message;
    std::string_view record;
  };
  constexpr Row kRows[] = {
      {1, 42, u"Αρχείο", "<11>Zentavo[]: event 42, category 1000: Αρχείο"},
      {2, 0xFFFFFFFF, u"", "<12>Zentavo[]: event -1, category 1000: "},
      {4, 1, u"one\nline\x7F", "<14>Zentavo[]: event 1, category 1000: one line "},
      {0xFFFF, 1, u"m", "<13>Zentavo[]: type 65535, event 1, category 1000: m"},
  };
  const Logger logger(SOCK_DGRAM);
  for (const Row& row : kRows) {
    platform::ReportSystemEvent(u"Zentavo", {row.type, 1000, row.id, row.message}, logger.Path());
    EXPECT_EQ(Shortened(logger.Datagram()), row.record);
  }
  platform::ReportSystemEvent(u"Zentavo", {4, 1000, 1, String(100'000, u'Ω')}, logger.Path());
  EXPECT_TRUE(logger.Datagram().ends_with("ΩΩ"));
}

TEST(EventLog, StreamsAreWrittenToToo) {
  using namespace std::string_literals;
  const Logger logger(SOCK_STREAM);
  platform::ReportSystemEvent(u"Zentavo", {4, 1000, 1, u"m"}, logger.Path());
  EXPECT_EQ(Shortened(logger.OneConnection()), "<14>Zentavo[]: event 1, category 1000: m\0"s);
}

#endif

}  // namespace
}  // namespace zentavo
