// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20::cimxml {

/// Where a CIM server is: a host and port, or a UNIX socket.
class TServerUrl {
 public:
  /// Reads `http://host[:port][/path]`, `https://host[:port][/path]` (IPv6 hosts in brackets),
  /// `unix:///path/of/socket` or `unix:/path/of/socket`.
  /// Errors: TQELException (kInvalidArgument) naming the text and what is wrong with it. What
  /// could be a user or a password in it is not repeated.
  explicit TServerUrl(const std::string& text);

  /// The text as it was given.
  const std::string& GetText() const { return m_text; }

  /// What requests are posted to, with the default port and path put in; `http://localhost/cimom`
  /// for a UNIX socket.
  const std::string& GetEndpoint() const { return m_endpoint; }

  /// Absolute path of the UNIX socket; empty when the server is reached over TCP.
  const std::string& GetSocketPath() const { return m_socketPath; }

  bool IsLocalSocket() const { return !m_socketPath.empty(); }

  /// Whether others may read what is sent: over http, to a host that is not this machine.
  bool IsOpenOnNetwork() const { return m_isOpenOnNetwork; }

 private:
  void ReadSocket(const std::string& rest);
  void ReadHttp(bool isSecure);

  std::string m_text;
  std::string m_endpoint;
  std::string m_socketPath;
  bool m_isOpenOnNetwork = false;
};

}  // namespace NZEPQEL20::cimxml
