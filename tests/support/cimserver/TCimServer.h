// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "tests/support/cimserver/TChannel.h"
#include "tests/support/cimserver/TPeerCounts.h"
#include "tests/support/cimserver/TPeerOptions.h"
#include "tests/support/cimserver/TRequestHandler.h"

namespace cimserver {

/// A CIM-XML server in front of an object model, for tests and benchmarks: as faithful to what two
/// makers' servers do on the wire as it takes to try a client out, and no further.
///
/// It serves from its construction to its destruction, which waits for the calls under way.
/// Threads: one for each connection; the operations are called from all of them.
class TCimServer {
 public:
  /// Errors: std::exception naming the address, certificate or key that cannot be used.
  TCimServer(std::shared_ptr<ICIMOperations> operations, TPeerOptions options = {});
  ~TCimServer();
  TCimServer(const TCimServer&) = delete;
  TCimServer& operator=(const TCimServer&) = delete;

  /// `http://127.0.0.1:PORT`, `https://127.0.0.1:PORT` or `unix:///path`.
  std::string GetUrl() const;
  /// 0 for a UNIX socket.
  std::uint16_t GetPort() const { return m_port; }

  /// Requests answered so far, by operation or method as the request spelled it; those that were
  /// answered by an HTTP error are TPeerCounts::kRefused.
  std::map<std::string, std::size_t> GetRequestCounts() const { return m_counts.GetRequests(); }
  std::size_t CountRequests(const std::string& name) const;
  std::size_t CountAllRequests() const;
  /// Connections accepted so far.
  std::size_t CountConnections() const { return m_counts.GetConnections(); }

 private:
  struct TSession {
    int socket = -1;  ///< -1 when it is closed or about to be.
    bool isDone = false;
    std::thread thread;
  };
  void Listen();
  void Accept();
  void Serve(TSession& session);
  void Reap();

  TPeerOptions m_options;
  TChannelFactory m_channels;
  TRequestHandler m_handler;
  TPeerCounts m_counts;
  int m_listener = -1;
  std::uint16_t m_port = 0;
  std::mutex m_mutex;
  std::list<TSession> m_sessions;  // Guarded, with what is in them but for the threads.
  std::thread m_acceptor;
};

}  // namespace cimserver
