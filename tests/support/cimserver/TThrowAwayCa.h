// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "tests/support/TTemporaryFolder.h"

namespace cimserver {

/// A certificate authority that lives as long as a test, with certificates for every way in which
/// a TLS handshake can go. The files are PEM, in a folder of its own that goes with it; keys are
/// readable by their owner only.
class TThrowAwayCa {
 public:
  /// A certificate and its private key.
  struct TFiles {
    std::string certificate;
    std::string key;
  };

  /// Errors: std::runtime_error in the words of OpenSSL or of the system.
  TThrowAwayCa();

  const std::string& GetFolder() const { return m_folder.GetPath(); }
  /// The authority's own certificate: what a client or a server is to trust.
  const std::string& GetCaFile() const { return m_caFile; }
  /// For a server at 127.0.0.1 or localhost.
  const TFiles& GetServer() const { return m_server; }
  /// The same, but its time ended yesterday.
  const TFiles& GetExpiredServer() const { return m_expired; }
  /// In good order, but for the host other.example alone.
  const TFiles& GetOtherServer() const { return m_other; }
  /// For a client with the name "throw-away client".
  const TFiles& GetClient() const { return m_client; }

 private:
  struct TIssuer;
  struct TRequest;
  TFiles Issue(const TIssuer& issuer, const TRequest& request) const;

  TTemporaryFolder m_folder;
  std::string m_caFile;
  TFiles m_server;
  TFiles m_expired;
  TFiles m_other;
  TFiles m_client;
};

}  // namespace cimserver
