// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TReplyHead.h"

#include "platform/cimxml/HttpText.h"

namespace NZEPQEL20::cimxml {
namespace {

// Interim replies come before the real one. 101 does not: after it the connection is no longer
// HTTP.
bool IsInterim(long status) {
  return status >= 100 && status < 200 && status != 101;
}

// The three digits of a status; 0 for anything else.
long ReadStatus(std::string_view text) {
  long status = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    if (i >= text.size() || text[i] < '0' || text[i] > '9') return 0;
    status = status * 10 + (text[i] - '0');
  }
  return status;
}

}  // namespace

void THeaderFields::TakeLine(std::string_view line) {
  if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) {
    if (!m_fields.empty()) m_fields.back().value.append(" ").append(Trim(line));
    return;
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return;
  m_fields.push_back(
      {std::string(Trim(line.substr(0, colon))), std::string(Trim(line.substr(colon + 1)))});
}

const std::string* THeaderFields::Find(std::string_view name) const {
  for (const TField& field : m_fields) {
    if (EqualsNoCase(field.name, name)) return &field.value;
  }
  return nullptr;
}

std::vector<std::string> THeaderFields::FindAll(std::string_view name) const {
  std::vector<std::string> values;
  for (const TField& field : m_fields) {
    if (EqualsNoCase(field.name, name)) values.push_back(field.value);
  }
  return values;
}

void TReplyHead::TakeLine(std::string_view line) {
  m_size += line.size();
  if (m_isComplete) {
    m_trailers.TakeLine(line);
  } else if (line.compare(0, 5, "HTTP/") == 0) {
    TakeStatusLine(line);
  } else if (!Trim(line).empty()) {
    m_fields.TakeLine(line);
  } else {
    m_isComplete = !IsInterim(m_status);
  }
}

void TReplyHead::TakeStatusLine(std::string_view line) {
  m_fields = THeaderFields();
  m_isHttp1 = line.compare(0, 7, "HTTP/1.") == 0;
  const std::size_t blank = line.find(' ');
  const std::string_view rest =
      blank == std::string_view::npos ? std::string_view() : Trim(line.substr(blank));
  m_status = ReadStatus(rest);
  m_phrase = rest.size() > 3 ? std::string(Trim(rest.substr(3))) : std::string();
}

bool TReplyHead::IsBodyDelimited() const {
  return m_fields.Find("Content-Length") != nullptr ||
         m_fields.Find("Transfer-Encoding") != nullptr;
}

}  // namespace NZEPQEL20::cimxml
