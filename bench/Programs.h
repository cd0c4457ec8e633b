// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace bench {

/// Runs a program to its end with its output thrown away; its exit status, or -1.
int RunProgram(const std::vector<std::string>& words);

/// A CIM-XML server in a process of its own, so that its work does not count for ours. Ends with
/// the object.
class TServerProgram {
 public:
  /// `arguments` of the server for tests. Errors: std::runtime_error when it does not start.
  explicit TServerProgram(const std::vector<std::string>& arguments);
  ~TServerProgram();
  TServerProgram(const TServerProgram&) = delete;
  TServerProgram& operator=(const TServerProgram&) = delete;

  const std::string& GetUrl() const { return m_url; }

 private:
  pid_t m_child = -1;
  int m_input = -1;   ///< The server ends when this is closed.
  int m_output = -1;  ///< Where it says what it listens on.
  std::string m_url;
};

}  // namespace bench
