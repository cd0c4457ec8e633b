// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace cimserver {

/// What a server has seen.
/// Threads: safe from several.
class TPeerCounts {
 public:
  /// Stands among the operations for requests that were answered by an HTTP error.
  static constexpr char kRefused[] = "(refused)";

  void AddConnection() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_connections;
  }
  void AddRequest(const std::string& name) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_requests[name];
  }
  std::size_t GetConnections() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections;
  }
  std::map<std::string, std::size_t> GetRequests() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
  }

 private:
  mutable std::mutex m_mutex;
  std::size_t m_connections = 0;
  std::map<std::string, std::size_t> m_requests;
};

}  // namespace cimserver
