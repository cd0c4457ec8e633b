// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TChannel.h"

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>
#include <stdexcept>

namespace cimserver {
namespace {

namespace asio = boost::asio;
using TSocket = asio::generic::stream_protocol::socket;
using TTlsStream = asio::ssl::stream<TSocket>;

TSocket Adopt(asio::io_context& context, int socket) {
  return {context, asio::generic::stream_protocol(AF_UNSPEC, 0), socket};
}

// Both kinds of stream have the same operations.
template <typename TStream>
std::size_t ReadSome(TStream& stream, char* data, std::size_t size) {
  boost::system::error_code error;
  return stream.read_some(asio::buffer(data, size), error);
}

template <typename TStream>
bool WriteAll(TStream& stream, std::string_view data) {
  boost::system::error_code error;
  asio::write(stream, asio::buffer(data.data(), data.size()), error);
  return !error;
}

class TPlainChannel final : public IChannel {
 public:
  explicit TPlainChannel(int socket) : m_socket(Adopt(m_context, socket)) {}
  std::size_t Read(char* data, std::size_t size) override { return ReadSome(m_socket, data, size); }
  bool Write(std::string_view data) override { return WriteAll(m_socket, data); }

 private:
  asio::io_context m_context;
  TSocket m_socket;
};

class TTlsChannel final : public IChannel {
 public:
  TTlsChannel(int socket, asio::ssl::context& tls) : m_stream(Adopt(m_context, socket), tls) {}
  // Says that the end is no accident; the other side need not answer.
  ~TTlsChannel() override {
    boost::system::error_code ignored;
    if (m_isOpen) m_stream.shutdown(ignored);
  }
  TTlsChannel(const TTlsChannel&) = delete;
  TTlsChannel& operator=(const TTlsChannel&) = delete;

  bool Greet() {
    boost::system::error_code error;
    m_stream.handshake(asio::ssl::stream_base::server, error);
    m_isOpen = !error;
    return m_isOpen;
  }
  std::size_t Read(char* data, std::size_t size) override { return ReadSome(m_stream, data, size); }
  bool Write(std::string_view data) override { return WriteAll(m_stream, data); }

 private:
  asio::io_context m_context;
  TTlsStream m_stream;
  bool m_isOpen = false;
};

}  // namespace

struct TChannelFactory::TTls {
  explicit TTls(const TPeerOptions& options) : context(asio::ssl::context::tls_server) {
    context.set_options(asio::ssl::context::no_tlsv1 | asio::ssl::context::no_tlsv1_1);
    context.use_certificate_chain_file(options.certificate);
    context.use_private_key_file(options.key, asio::ssl::context::pem);
    if (options.clientCa.empty()) return;
    context.load_verify_file(options.clientCa);
    context.set_verify_mode(asio::ssl::verify_peer | asio::ssl::verify_fail_if_no_peer_cert);
  }
  asio::ssl::context context;
};

TChannelFactory::TChannelFactory(const TPeerOptions& options) {
  if (options.certificate.empty()) return;
  try {
    m_tls = std::make_unique<TTls>(options);
  } catch (const boost::system::system_error& failure) {
    throw std::runtime_error(options.certificate + ", " + options.key + ": " + failure.what());
  }
}

TChannelFactory::~TChannelFactory() = default;

std::unique_ptr<IChannel> TChannelFactory::Open(int socket) const {
  if (!m_tls) return std::make_unique<TPlainChannel>(socket);
  auto channel = std::make_unique<TTlsChannel>(socket, m_tls->context);
  if (!channel->Greet()) return nullptr;
  return channel;
}

}  // namespace cimserver
