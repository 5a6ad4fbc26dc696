// TLS in front of the plain servers of a test program, by the program tls_front, whose authority
// the system trusts as long as the test program runs.
//
// tls_front is a Linux program. The Windows tests start it too, through Wine; where it is missing
// Find() returns null, and the test is to skip itself. The trust takes effect before the first
// connection with TLS only, so every test with TLS begins with Find().
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "tests/support/environment.h"
#include "tests/support/sockets.h"
#include "tests/support/temporary_folder.h"
#include "zentavo/platform/process.h"

#ifdef _WIN32
#include <windows.h>

#include <wincrypt.h>

#include <vector>
#endif

namespace zentavo::testing {

// Has the system trust an authority (PEM).
class Trust {
 public:
#ifdef _WIN32
  // The registry form of the store has no question to the user; closing it makes it take effect.
  explicit Trust(const std::string& pem) {
    DWORD size = 0;
    const auto length = static_cast<DWORD>(pem.size());
    CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_ANY, nullptr, &size, nullptr, nullptr);
    der_.resize(size);
    CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_ANY, der_.data(), &size, nullptr,
                         nullptr);
    ChangeStore([](PCCERT_CONTEXT) {});
  }
  ~Trust() {
    ChangeStore(CertDeleteCertificateFromStore);
  }

 private:
  template <typename Change>
  void ChangeStore(Change change) {
    const HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_SYSTEM_REGISTRY_W, 0, 0,
                                           CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
    PCCERT_CONTEXT certificate = nullptr;
    if (CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der_.data(),
                                         static_cast<DWORD>(der_.size()),
                                         CERT_STORE_ADD_REPLACE_EXISTING, &certificate)) {
      change(certificate);
    }
    CertCloseStore(store, 0);
  }

  std::vector<BYTE> der_;
#else
  explicit Trust(const std::string& pem) {
    std::ofstream(file_) << pem;
  }

 private:
  const TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_ / u"authority.pem";
  const EnvironmentVariable place_{"SSL_CERT_FILE", file_.string()};
#endif

 public:
  Trust(const Trust&) = delete;
  Trust& operator=(const Trust&) = delete;
};

class TlsFront {
 public:
  // The program's own, started by the first call; null where it does not start.
  static TlsFront* Find() {
    static TlsFront front;
    return front.trust_ ? &front : nullptr;
  }

  // The address of a new TLS port in front of a plain one; `kind` as tls_front takes it.
  std::u16string Url(std::uint16_t plain_port, const std::string& kind = "good",
                     std::u16string_view path = u"/") {
    control_.Send(std::to_string(plain_port) + " " + kind + "\n");
    const std::string port = ReadTo("\n");
    return u"https://localhost:" + std::u16string(port.begin(), port.end()) + std::u16string(path);
  }

 private:
  TlsFront() {
    if (!std::filesystem::exists(ZENTAVO_TLS_FRONT)) return;
    const Listener listener;
    const std::string port = std::to_string(listener.Port());
    const std::u16string arguments[] = {{port.begin(), port.end()}};
    std::int32_t unused = 0;
    if (platform::StartProgram(std::filesystem::path(ZENTAVO_TLS_FRONT).u16string(), arguments, 0,
                               platform::ProcessWait::kNoWait, unused) != 0) {
      return;
    }
    control_ = listener.Accept();
    trust_ = std::make_unique<Trust>(ReadTo("\n\n"));
  }
  std::string ReadTo(std::string_view end) {
    std::string text;
    while (!text.ends_with(end)) {
      const std::string piece = control_.Receive();
      if (piece.empty()) return {};
      text += piece;
    }
    return text.substr(0, text.size() - end.size());
  }

  Socket control_;
  std::unique_ptr<Trust> trust_;
};

}  // namespace zentavo::testing
