// Small GETs on one connection and on new ones, and downloads of 200 MB to a stream and to a file,
// beside libcurl's easy interface and Boost.Beast, against nginx on loopback.
//
// The program and nginx share one processor: on several, small round trips measure how fast an idle
// one wakes up. Each figure is the best of several rounds, in which the peers take turns: the
// program's own processor time, and the time on the clock, which has nginx's part in it.
#include <curl/curl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "one_processor.h"
#include "tests/support/sockets.h"
#include "zentavo/http/request.h"

extern char** environ;

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace fs = std::filesystem;
using Tcp = asio::ip::tcp;

constexpr int kKept = 10'000;
constexpr int kNew = 1'000;
constexpr std::size_t kLarge = 200'000'000;
constexpr int kRounds = 5;

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

// nginx on a free port, serving a folder of its own.
class Nginx {
 public:
  Nginx() : folder_(fs::temp_directory_path() / ("http_bench-" + std::to_string(getpid()))) {
    fs::create_directories(folder_ / "root");
    fs::permissions(folder_, fs::perms::all);
    std::ofstream(folder_ / "root/small") << std::string(100, 's');
    std::ofstream(folder_ / "root/large") << std::string(kLarge, 'l');
    { port_ = zentavo::testing::Listener().Port(); }
    std::ofstream(folder_ / "nginx.conf")
        << "daemon off; worker_processes 1; pid " << (folder_ / "pid").string()
        << "; error_log /dev/null; events {} http { access_log off; sendfile on;"
        << " keepalive_requests 1000000000; server { listen 127.0.0.1:" << port_ << "; root "
        << (folder_ / "root").string() << "; } }\n";
    std::string program = "nginx", option = "-c", file = (folder_ / "nginx.conf").string();
    char* const arguments[] = {program.data(), option.data(), file.data(), nullptr};
    Require(posix_spawnp(&process_, "nginx", nullptr, nullptr, arguments, environ) == 0,
            "nginx does not start");
    while (!zentavo::testing::ConnectTo(port_).IsOpen()) usleep(10'000);
  }
  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;
  ~Nginx() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    fs::remove_all(folder_);
  }

  std::uint16_t Port() const { return port_; }
  std::string Url(const std::string& name) const {
    return "http://127.0.0.1:" + std::to_string(port_) + "/" + name;
  }
  fs::path File(const char* name) const { return folder_ / name; }

 private:
  fs::path folder_;
  std::uint16_t port_ = 0;
  pid_t process_ = 0;
};

zentavo::String Wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

// Counts what is written.
class CountingStream : public zentavo::TStream {
 public:
  std::int64_t Read(void*, std::int64_t) override { return 0; }
  std::int64_t Write(const void*, std::int64_t count) override {
    count_ += count;
    return count;
  }
  std::int64_t Seek(std::int64_t, zentavo::TSeekOrigin) override { return 0; }
  void SetSize(std::int64_t) override {}
  std::int64_t Count() const { return count_; }

 private:
  std::int64_t count_ = 0;
};

void OwnGet(zentavo::THTTPConnection& connection) {
  zentavo::TMemoryStream body;
  zentavo::String headers;
  Require(connection.Request(u"/small", nullptr, &body, {}, headers) && body.Size() == 100,
          "a wrong answer");
}

void OwnKept(const Nginx& server) {
  zentavo::THTTPConnection connection(true);
  connection.OpenConnection(u"127.0.0.1", false, server.Port());
  for (int i = 0; i < kKept; ++i) OwnGet(connection);
}

// A session of its own each, so that no connection is left from the one before.
void OwnNew(const Nginx& server) {
  for (int i = 0; i < kNew; ++i) {
    zentavo::THTTPConnection connection(true);
    connection.OpenConnection(u"127.0.0.1", false, server.Port());
    OwnGet(connection);
  }
}

void OwnStream(const Nginx& server) {
  CountingStream stream;
  zentavo::THTTPRequest::DoExecuteStream(Wide(server.Url("large")), nullptr, &stream);
  Require(stream.Count() == static_cast<std::int64_t>(kLarge), "a wrong size");
}

void OwnFile(const Nginx& server) {
  zentavo::THTTPRequest::DownLoadFile(Wide(server.Url("large")), server.File("own").u16string());
}

class CurlEasy {
 public:
  CurlEasy(const std::string& url, curl_write_callback write, void* target)
      : easy_(curl_easy_init()) {
    curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, write);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, target);
  }
  CurlEasy(const CurlEasy&) = delete;
  CurlEasy& operator=(const CurlEasy&) = delete;
  ~CurlEasy() { curl_easy_cleanup(easy_); }
  void Perform() { Require(curl_easy_perform(easy_) == CURLE_OK, "libcurl fails"); }

 private:
  CURL* easy_;
};

std::size_t Append(char* bytes, std::size_t, std::size_t count, void* text) {
  static_cast<std::string*>(text)->append(bytes, count);
  return count;
}
std::size_t Count(char*, std::size_t, std::size_t count, void* total) {
  *static_cast<std::size_t*>(total) += count;
  return count;
}
std::size_t WriteToFile(char* bytes, std::size_t, std::size_t count, void* file) {
  return std::fwrite(bytes, 1, count, static_cast<std::FILE*>(file));
}

void CurlKept(const Nginx& server) {
  std::string body;
  CurlEasy easy(server.Url("small"), Append, &body);
  for (int i = 0; i < kKept; ++i) {
    body.clear();
    easy.Perform();
    Require(body.size() == 100, "a wrong answer");
  }
}

void CurlNew(const Nginx& server) {
  for (int i = 0; i < kNew; ++i) {
    std::string body;
    CurlEasy(server.Url("small"), Append, &body).Perform();
    Require(body.size() == 100, "a wrong answer");
  }
}

void CurlStream(const Nginx& server) {
  std::size_t total = 0;
  CurlEasy(server.Url("large"), Count, &total).Perform();
  Require(total == kLarge, "a wrong size");
}

// With the same care: flushed to the disk, then renamed.
void CurlFile(const Nginx& server) {
  const std::string beside = server.File("peer.new").string();
  std::FILE* const file = std::fopen(beside.c_str(), "wb");
  CurlEasy(server.Url("large"), WriteToFile, file).Perform();
  std::fflush(file);
  fsync(fileno(file));
  std::fclose(file);
  fs::rename(beside, server.File("peer"));
}

class BeastClient {
 public:
  explicit BeastClient(const Nginx& server) : host_("127.0.0.1:" + std::to_string(server.Port())) {
    stream_.connect(Tcp::endpoint(asio::ip::make_address("127.0.0.1"), server.Port()));
    stream_.socket().set_option(Tcp::no_delay(true));
  }

  void Send(const char* path) {
    beast::http::request<beast::http::empty_body> request(beast::http::verb::get, path, 11);
    request.set(beast::http::field::host, host_);
    beast::http::write(stream_, request);
  }
  std::string GetSmall() {
    Send("/small");
    beast::http::response<beast::http::string_body> response;
    beast::http::read(stream_, buffer_, response);
    return std::move(response.body());
  }
  // Hands the large file to `take` in pieces.
  template <typename Take>
  void GetLarge(Take take) {
    Send("/large");
    beast::http::response_parser<beast::http::buffer_body> parser;
    parser.body_limit(2 * kLarge);
    beast::http::read_header(stream_, buffer_, parser);
    std::vector<char> piece(65536);
    while (!parser.is_done()) {
      parser.get().body().data = piece.data();
      parser.get().body().size = piece.size();
      beast::error_code error;
      beast::http::read(stream_, buffer_, parser, error);
      Require(!error || error == beast::http::error::need_buffer, "Beast fails");
      take(piece.data(), piece.size() - parser.get().body().size);
    }
  }

 private:
  asio::io_context context_;
  beast::tcp_stream stream_{context_};
  beast::flat_buffer buffer_{65536};
  std::string host_;
};

void BeastKept(const Nginx& server) {
  BeastClient client(server);
  for (int i = 0; i < kKept; ++i) Require(client.GetSmall().size() == 100, "a wrong answer");
}

void BeastNew(const Nginx& server) {
  for (int i = 0; i < kNew; ++i) {
    Require(BeastClient(server).GetSmall().size() == 100, "a wrong answer");
  }
}

void BeastStream(const Nginx& server) {
  std::size_t total = 0;
  BeastClient(server).GetLarge([&](const char*, std::size_t count) { total += count; });
  Require(total == kLarge, "a wrong size");
}

struct Time {
  double processor = 1e9;  // milliseconds
  double clock = 1e9;
};

double ProcessorMs() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

using Work = std::function<void(const Nginx&)>;

void Measure(const Work& work, const Nginx& server, Time& best) {
  const double processor = ProcessorMs();
  const auto clock = std::chrono::steady_clock::now();
  work(server);
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - clock;
  best.processor = std::min(best.processor, ProcessorMs() - processor);
  best.clock = std::min(best.clock, passed.count());
}

struct Peer {
  const char* name;
  Work work;
};

// The first peer is this library.
void Compare(const char* name, const std::vector<Peer>& peers, const Nginx& server) {
  std::vector<Time> best(peers.size());
  for (int round = 0; round < kRounds; ++round) {
    for (std::size_t i = 0; i < peers.size(); ++i) Measure(peers[i].work, server, best[i]);
  }
  std::printf("%s\n", name);
  for (std::size_t i = 0; i < peers.size(); ++i) {
    std::printf("  %-10s %9.1f ms processor %9.1f ms clock", peers[i].name, best[i].processor,
                best[i].clock);
    if (i != 0) {
      std::printf("   zentavo takes %.2f and %.2f of it", best[0].processor / best[i].processor,
                  best[0].clock / best[i].clock);
    }
    std::printf("\n");
  }
}

long MostMemoryKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void PrintMemory(const Nginx& server) {
  OwnKept(server);
  const long before = MostMemoryKb();
  OwnStream(server);
  OwnFile(server);
  std::printf("A download of 200 MB raises the most memory ever used by %ld kB\n",
              MostMemoryKb() - before);
}

}  // namespace

int main() {
  bench::UseOneProcessor();
  curl_global_init(CURL_GLOBAL_DEFAULT);
  const Nginx server;
  PrintMemory(server);
  Compare("10,000 GETs of 100 bytes on one connection",
          {{"zentavo", OwnKept}, {"libcurl", CurlKept}, {"Beast", BeastKept}}, server);
  Compare("1,000 GETs of 100 bytes on new connections",
          {{"zentavo", OwnNew}, {"libcurl", CurlNew}, {"Beast", BeastNew}}, server);
  Compare("200 MB to a stream",
          {{"zentavo", OwnStream}, {"libcurl", CurlStream}, {"Beast", BeastStream}}, server);
  Compare("200 MB to a file", {{"zentavo", OwnFile}, {"libcurl", CurlFile}}, server);
  return 0;
}
