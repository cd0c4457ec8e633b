// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace NZEPQEL20 {

/// How a CIM server is reached.
///
/// The password is never written to a log or into a message.
struct TServerOptions {
  /// `http://host[:port][/path]`, `https://host[:port][/path]` or `unix:///path/of/socket`. Ports
  /// left out are 5988 and 5989, the path `/cimom`.
  std::string url;

  std::string user;      ///< For HTTP Basic; empty: none is sent.
  std::string password;  ///< Belongs to `user`.

  std::string caFile;             ///< PEM certificates to trust; empty: those of the system.
  std::string clientCertificate;  ///< PEM file; empty: none is shown to the server.
  std::string clientKey;          ///< PEM file; empty: the key is in `clientCertificate`.
  bool isInsecure = false;        ///< Take any certificate of the server, for any name.

  std::chrono::milliseconds connectTimeout{10'000};   ///< Name, TCP and TLS together.
  std::chrono::milliseconds requestTimeout{120'000};  ///< One HTTP exchange.
  std::chrono::milliseconds totalTimeout{600'000};    ///< One operation with all its exchanges.
  /// One method call, in the place of the two above: a provider may do all its work inside it.
  std::chrono::milliseconds methodTimeout{12 * 3600'000};

  /// Largest reply that is read, in bytes of its body.
  std::uint64_t maxReplyBytes = std::uint64_t{64} << 20U;
};

}  // namespace NZEPQEL20
