// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace host {

/// A TCP port of this machine behind which requests are read and never answered.
class TListener {
 public:
  /// Errors: std::system_error.
  TListener();
  ~TListener();
  TListener(const TListener&) = delete;
  TListener& operator=(const TListener&) = delete;

  std::string GetUrl() const { return "http://127.0.0.1:" + std::to_string(m_port); }

  /// Takes the next connection and reads the header of its request; the connection stays open.
  /// What has come after 30 seconds is all that there is.
  std::string TakeRequest();

 private:
  int m_listener = -1;
  int m_connection = -1;
  int m_port = 0;
};

}  // namespace host
