// Stands in front of plain servers on loopback and speaks TLS for them. Its certificates are made
// when it starts and known to nobody else.
//
//   tls_front CONTROL_PORT
//
// It connects to CONTROL_PORT and sends its authority's certificate (PEM) and an empty line. For
// each line "PLAIN_PORT KIND" that comes back it opens a port, answers "PORT\n", and passes on what
// arrives there to PLAIN_PORT, until the connection closes. KIND is good, expired, other-host,
// stranger (of an authority that it keeps for itself), client-certificate (insists on one), old
// (TLS 1.1 at most).
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/sockets.h"

namespace {

using zentavo::testing::ConnectTo;
using zentavo::testing::Listener;
using zentavo::testing::Socket;

constexpr long kDay = 24L * 60 * 60;

struct Identity {
  X509* certificate;
  EVP_PKEY* key;
};

void Extend(X509* certificate, X509* issuer, int nid, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509V3_set_ctx_nodb(&context);
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

// A certificate of `key` that `issuer` signs, or itself.
Identity MakeIdentity(const char* name, EVP_PKEY* key, const Identity* issuer, long valid_from,
                      long valid_to) {
  Identity made{X509_new(), key};
  X509_set_version(made.certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(made.certificate), issuer == nullptr ? 1 : 2);
  X509_gmtime_adj(X509_getm_notBefore(made.certificate), valid_from);
  X509_gmtime_adj(X509_getm_notAfter(made.certificate), valid_to);
  X509_set_pubkey(made.certificate, made.key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(made.certificate), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
  const Identity& signer = issuer != nullptr ? *issuer : made;
  X509_set_issuer_name(made.certificate, X509_get_subject_name(signer.certificate));
  Extend(made.certificate, signer.certificate, NID_subject_key_identifier, "hash");
  return made;
}

void Sign(const Identity& identity, const Identity& issuer) {
  X509_sign(identity.certificate, issuer.key, EVP_sha256());
}

// Signs by RSA: of elliptic signatures Wine refuses one in a hundred, those with a short number.
Identity MakeAuthority() {
  const Identity authority =
      MakeIdentity("Test authority", EVP_RSA_gen(2048), nullptr, -2 * kDay, 2 * kDay);
  Extend(authority.certificate, authority.certificate, NID_basic_constraints, "critical,CA:TRUE");
  Extend(authority.certificate, authority.certificate, NID_key_usage,
         "critical,keyCertSign,cRLSign");
  Sign(authority, authority);
  return authority;
}

Identity MakeServer(const Identity& authority, std::string_view kind) {
  const bool expired = kind == "expired";
  const bool other_host = kind == "other-host";
  const Identity server =
      MakeIdentity(other_host ? "other.invalid" : "localhost", EVP_EC_gen("P-256"), &authority,
                   -2 * kDay, expired ? -kDay : kDay);
  Extend(server.certificate, authority.certificate, NID_subject_alt_name,
         other_host ? "DNS:other.invalid" : "DNS:localhost,IP:127.0.0.1,IP:::1");
  Extend(server.certificate, authority.certificate, NID_ext_key_usage, "serverAuth");
  Sign(server, authority);
  return server;
}

SSL_CTX* MakeContext(const Identity& server, const Identity& authority, std::string_view kind) {
  SSL_CTX* const context = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(context, server.certificate);
  SSL_CTX_use_PrivateKey(context, server.key);
  if (kind == "old") {
    SSL_CTX_set_security_level(context, 0);
    SSL_CTX_set_min_proto_version(context, TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context, TLS1_1_VERSION);
  }
  if (kind == "client-certificate") {
    X509_STORE_add_cert(SSL_CTX_get_cert_store(context), authority.certificate);
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  }
  return context;
}

bool SendSecurely(SSL* ssl, const std::string& bytes) {
  return SSL_write(ssl, bytes.data(), static_cast<int>(bytes.size())) > 0;
}

// What has been decrypted, waiting for a record; empty at the end.
std::string ReceiveSecurely(SSL* ssl) {
  std::string buffer(16384, '\0');
  const int count = SSL_read(ssl, buffer.data(), static_cast<int>(buffer.size()));
  buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return buffer;
}

// Passes bytes on in both directions until one side ends.
void Pump(SSL* ssl, const Socket& secure, const Socket& plain) {
  for (;;) {
    pollfd sockets[] = {{secure.get(), POLLIN, 0}, {plain.get(), POLLIN, 0}};
    if (SSL_pending(ssl) == 0 && poll(sockets, 2, -1) < 0) return;
    if (SSL_pending(ssl) != 0 || sockets[0].revents != 0) {
      const std::string bytes = ReceiveSecurely(ssl);
      if (bytes.empty() || !plain.Send(bytes)) return;
    }
    if (sockets[1].revents != 0) {
      const std::string bytes = plain.Receive();
      if (bytes.empty() || !SendSecurely(ssl, bytes)) return;
    }
  }
}

void Serve(SSL_CTX* context, Socket secure, std::uint16_t plain_port) {
  SSL* const ssl = SSL_new(context);
  SSL_set_fd(ssl, secure.get());
  if (SSL_accept(ssl) == 1) {
    const Socket plain = ConnectTo(plain_port);
    Pump(ssl, secure, plain);
    SSL_shutdown(ssl);
  }
  // Closing at once would reset the connection and take the last alert back.
  secure.Shutdown(zentavo::testing::kShutSend);
  while (!secure.Receive().empty()) {
  }
  SSL_free(ssl);
}

std::string PemOf(X509* certificate) {
  BIO* const memory = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(memory, certificate);
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory, &text);
  std::string pem(text, static_cast<std::size_t>(size));
  BIO_free(memory);
  return pem;
}

// Serves a plain port for as long as the program runs.
std::uint16_t Open(std::uint16_t plain_port, const std::string& kind, const Identity& authority) {
  const Identity signer = kind == "stranger" ? MakeAuthority() : authority;
  SSL_CTX* const context = MakeContext(MakeServer(signer, kind), authority, kind);
  auto listener = std::make_unique<Listener>();
  const std::uint16_t port = listener->Port();
  std::thread([context, plain_port, listener = std::move(listener)] {
    for (;;) std::thread(Serve, context, listener->Accept(), plain_port).detach();
  }).detach();
  return port;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  std::signal(SIGPIPE, SIG_IGN);
  const Identity authority = MakeAuthority();
  const Socket control = ConnectTo(static_cast<std::uint16_t>(std::atoi(arguments[1])));
  bool connected = control.Send(PemOf(authority.certificate) + "\n");
  while (connected) {
    std::istringstream line(control.Receive());
    std::uint16_t plain_port = 0;
    std::string kind;
    connected = static_cast<bool>(line >> plain_port >> kind) &&
                control.Send(std::to_string(Open(plain_port, kind, authority)) + "\n");
  }
  std::_Exit(0);
}
