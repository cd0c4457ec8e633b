// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tests/support/cimserver/CimTypes.h"

namespace cimserver {

/// How the peer is to be reached, and which server it is like.
struct TPeerOptions {
  EStyle style = EStyle::kPegasus;
  std::string host = "peer";  ///< What HOST elements say.
  std::uint16_t port = 0;     ///< On 127.0.0.1; 0: any that is free.
  std::string unixPath;       ///< A socket to be made there instead; goes with the server.

  std::string certificate;  ///< PEM file; makes it HTTPS.
  std::string key;          ///< PEM file; belongs to `certificate`.
  std::string clientCa;     ///< PEM file: every client has to show a certificate of this CA.

  std::string user;  ///< Not empty: HTTP Basic is needed.
  std::string password;

  bool hasPull = true;  ///< Counts for kPegasus; kSfcb never has it.
  /// Requests after which a connection is closed, 0 for never; left out: as the style has it.
  std::optional<unsigned int> requestsPerConnection;
  /// Bytes of one chunk of a chunked reply; 0: all in one.
  std::size_t chunkBytes = 0;
  /// Called with the name of every extrinsic method before the provider is; what it throws is the
  /// answer. Empty: nothing is.
  std::function<void(const std::string& method)> beforeMethod;
};

}  // namespace cimserver
