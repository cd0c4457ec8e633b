// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace NZEPQEL20::cimxml {

/// Header fields as they came, found by name without case.
class THeaderFields {
 public:
  /// Takes one line; one that starts with a blank goes on with the field before.
  void TakeLine(std::string_view line);

  /// The value of the first field of that name; null when there is none.
  const std::string* Find(std::string_view name) const;

  /// The values of all fields of that name, in their order.
  std::vector<std::string> FindAll(std::string_view name) const;

 private:
  struct TField {
    std::string name;
    std::string value;
  };
  std::vector<TField> m_fields;
};

/// Status line and header fields of one reply, and the fields that follow its body in chunks.
class TReplyHead {
 public:
  /// Takes one line with its end. An interim reply (1xx) is forgotten when the next one starts.
  void TakeLine(std::string_view line);

  /// Whether the header block of the final reply has ended. What comes then are trailers.
  bool IsComplete() const { return m_isComplete; }

  /// Whether the status line is one of HTTP/1.0 or HTTP/1.1.
  bool IsHttp1() const { return m_isHttp1; }

  /// 0 before the first line, and for one without a status.
  long GetStatus() const { return m_status; }

  /// The words behind the status, as the server wrote them.
  const std::string& GetPhrase() const { return m_phrase; }

  const THeaderFields& GetFields() const { return m_fields; }
  const THeaderFields& GetTrailers() const { return m_trailers; }

  /// Whether the end of the body can be told without the end of the connection.
  bool IsBodyDelimited() const;

  /// Bytes of all lines so far, those of interim replies and trailers included.
  std::size_t GetSize() const { return m_size; }

 private:
  void TakeStatusLine(std::string_view line);

  THeaderFields m_fields;
  THeaderFields m_trailers;
  std::string m_phrase;
  std::size_t m_size = 0;
  long m_status = 0;
  bool m_isHttp1 = false;
  bool m_isComplete = false;
};

}  // namespace NZEPQEL20::cimxml
