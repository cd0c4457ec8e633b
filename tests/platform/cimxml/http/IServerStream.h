// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace diagstest {

/// How a scripted server speaks TLS.
struct TTlsSettings {
  std::string certificate;  ///< PEM file with the chain.
  std::string key;          ///< PEM file.
  std::string clientCa;     ///< PEM file: clients must show a certificate of it; empty: need not.
  int maxVersion = 0;       ///< As OpenSSL numbers versions; 0: the newest.
};

/// A server's end of one connection. Closes it when destroyed.
class IServerStream {
 public:
  virtual ~IServerStream() = default;
  /// Bytes read; 0 at the end, or when the connection is of no more use.
  virtual std::size_t Read(char* buffer, std::size_t size) = 0;
  /// Whether all was written.
  virtual bool Write(const char* data, std::size_t size) = 0;
  /// Tells the other side that nothing more comes.
  virtual void Close() = 0;
  virtual int GetSocket() const = 0;
};

/// A stream over a connected socket, which it then owns; with TLS when `tls` is not null.
/// Returns null when the handshake fails.
std::unique_ptr<IServerStream> OpenStream(int socket, const TTlsSettings* tls);

}  // namespace diagstest
