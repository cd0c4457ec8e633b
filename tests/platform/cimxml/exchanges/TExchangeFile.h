// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace diagstest {

/// One exchange with a server, told by a text file: which operation is asked for, each request to
/// the byte with the reply to it, and what comes out in the end.
///
/// Sections begin with "=== name"; "#" lines before the first are comments. A line that begins with
/// "+" goes on where the one above ended. In a request, the lines before the empty one are lines
/// that its head must have. In a reply the head's "Content-Length: @" is given the body's length,
/// with "@0" filled up with zeros to ten digits; "=== chunk" and "=== trailers" sections that
/// follow make it a chunked one.
class TExchangeFile {
 public:
  struct TStep {
    std::vector<std::string> headLines;
    std::string requestBody;
    std::string reply;  ///< As it goes over the wire.
  };

  /// Errors: std::runtime_error naming the file and what is wrong with it.
  explicit TExchangeFile(const std::string& path);

  /// The lines of the section "operation".
  const std::vector<std::string>& GetOperation() const { return m_operation; }
  const std::vector<TStep>& GetSteps() const { return m_steps; }
  /// The text of the section "result".
  const std::string& GetResult() const { return m_result; }

 private:
  using TSection = std::pair<std::string, std::string>;
  void Take(const TSection& section);
  void TakeRequest(const std::string& text);
  void TakeReply(const std::string& text);
  void AddChunk(const std::string& text);

  std::vector<std::string> m_operation;
  std::vector<TStep> m_steps;
  std::string m_result;
};

/// The file names in the folder of exchanges, in ascending order.
std::vector<std::string> ListExchanges(const std::string& folder);

}  // namespace diagstest
