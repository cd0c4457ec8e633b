// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/http/IServerStream.h"

#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

namespace diagstest {
namespace {

class TPlainStream : public IServerStream {
 public:
  explicit TPlainStream(int socket) : m_socket(socket) {}
  ~TPlainStream() override { ::close(m_socket); }
  TPlainStream(const TPlainStream&) = delete;
  TPlainStream& operator=(const TPlainStream&) = delete;

  std::size_t Read(char* buffer, std::size_t size) override {
    const ssize_t got = ::recv(m_socket, buffer, size, 0);
    return got > 0 ? static_cast<std::size_t>(got) : 0;
  }

  bool Write(const char* data, std::size_t size) override {
    while (size > 0) {
      const ssize_t sent = ::send(m_socket, data, size, MSG_NOSIGNAL);
      if (sent <= 0) return false;
      data += sent;
      size -= static_cast<std::size_t>(sent);
    }
    return true;
  }

  void Close() override { ::shutdown(m_socket, SHUT_RDWR); }
  int GetSocket() const override { return m_socket; }

 private:
  int m_socket;
};

struct TContextCleanup {
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
struct TSslCleanup {
  void operator()(SSL* ssl) const { SSL_free(ssl); }
};
using TContext = std::unique_ptr<SSL_CTX, TContextCleanup>;

void Require(bool isGood, const char* what) {
  if (!isGood) throw std::runtime_error(std::string("scripted server: cannot use ") + what);
}

TContext MakeContext(const TTlsSettings& tls) {
  TContext context(SSL_CTX_new(TLS_server_method()));
  Require(context != nullptr, "TLS");
  SSL_CTX* const raw = context.get();
  if (tls.maxVersion != 0) {
    // Old versions are of a security level that is off by default.
    SSL_CTX_set_security_level(raw, 0);
    Require(SSL_CTX_set_min_proto_version(raw, TLS1_VERSION) == 1, "old versions");
    Require(SSL_CTX_set_max_proto_version(raw, tls.maxVersion) == 1, "the version");
  }
  Require(SSL_CTX_use_certificate_chain_file(raw, tls.certificate.c_str()) == 1, "certificate");
  Require(SSL_CTX_use_PrivateKey_file(raw, tls.key.c_str(), SSL_FILETYPE_PEM) == 1, "key");
  if (!tls.clientCa.empty()) {
    Require(SSL_CTX_load_verify_locations(raw, tls.clientCa.c_str(), nullptr) == 1, "client CA");
    SSL_CTX_set_verify(raw, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    static const unsigned char id[] = "scripted";
    SSL_CTX_set_session_id_context(raw, id, sizeof id);
  }
  return context;
}

class TTlsStream : public IServerStream {
 public:
  TTlsStream(int socket, const TTlsSettings& tls)
      : m_plain(socket), m_context(MakeContext(tls)), m_ssl(SSL_new(m_context.get())) {
    SSL_set_fd(m_ssl.get(), socket);
  }

  bool Accept() {
    const bool isAccepted = SSL_accept(m_ssl.get()) == 1;
    // The alert that tells the client why must not be lost to a reset.
    if (!isAccepted) Drain();
    return isAccepted;
  }

  std::size_t Read(char* buffer, std::size_t size) override {
    const int got =
        SSL_read(m_ssl.get(), buffer, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
    return got > 0 ? static_cast<std::size_t>(got) : 0;
  }

  bool Write(const char* data, std::size_t size) override {
    return SSL_write(m_ssl.get(), data, static_cast<int>(size)) == static_cast<int>(size);
  }

  void Close() override {
    SSL_shutdown(m_ssl.get());
    m_plain.Close();
  }

  int GetSocket() const override { return m_plain.GetSocket(); }

 private:
  void Drain() {
    ::shutdown(m_plain.GetSocket(), SHUT_WR);
    char rest[256];
    while (m_plain.Read(rest, sizeof rest) > 0) {
    }
  }

  TPlainStream m_plain;
  TContext m_context;
  std::unique_ptr<SSL, TSslCleanup> m_ssl;
};

}  // namespace

std::unique_ptr<IServerStream> OpenStream(int socket, const TTlsSettings* tls) {
  if (tls == nullptr) return std::make_unique<TPlainStream>(socket);
  auto stream = std::make_unique<TTlsStream>(socket, *tls);
  if (!stream->Accept()) return nullptr;
  return stream;
}

}  // namespace diagstest
