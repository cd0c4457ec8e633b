// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/cimserver/TPeerOptions.h"

namespace cimserver {

/// The two ways of one connection, in the clear or by TLS.
/// Threads: one; another may shut the socket down to end what blocks.
class IChannel {
 public:
  virtual ~IChannel() = default;
  /// Blocks for at least one byte; 0 when there will be none any more.
  virtual std::size_t Read(char* data, std::size_t size) = 0;
  /// False when the other side is gone.
  virtual bool Write(std::string_view data) = 0;
};

/// Makes channels of accepted sockets.
class TChannelFactory {
 public:
  /// Errors: std::exception naming the certificate or key that cannot be used.
  explicit TChannelFactory(const TPeerOptions& options);
  ~TChannelFactory();
  TChannelFactory(const TChannelFactory&) = delete;
  TChannelFactory& operator=(const TChannelFactory&) = delete;

  /// Owns: `socket`, also on failure. Does the TLS handshake; null when that fails.
  std::unique_ptr<IChannel> Open(int socket) const;

 private:
  struct TTls;
  std::unique_ptr<TTls> m_tls;
};

}  // namespace cimserver
