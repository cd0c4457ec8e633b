// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMReference.h"

#include <charconv>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

// Text that nobody would write as a path; what is longer is an attack or a mistake.
constexpr std::string::size_type kLongestQuote = 200;

void AppendQuoted(const std::string& text, std::string& path) {
  path += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') path += '\\';
    path += c;
  }
  path += '"';
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// A cursor over the text of a path.
class TPathReader {
 public:
  explicit TPathReader(const std::string& text) : m_text(text) {}

  TCIMReference Read();

 private:
  [[noreturn]] void Refuse(const std::string& reason) const;
  bool IsAtEnd() const { return m_at >= m_text.size(); }
  void SkipBlanks() {
    while (!IsAtEnd() && IsBlank(m_text[m_at])) ++m_at;
  }
  std::string ReadHost();
  void ReadClass(TCIMReference& path);
  void ReadKeys(TCIMReference& path);
  std::string ReadName();
  TCIMValue ReadValue();
  std::string ReadQuoted();
  TCIMValue ReadBare();

  const std::string& m_text;
  std::string::size_type m_at = 0;
};

void TPathReader::Refuse(const std::string& reason) const {
  const std::string shown =
      m_text.size() <= kLongestQuote ? m_text : m_text.substr(0, kLongestQuote) + "...";
  throw TQELException(
      TQELStatusCode::kInvalidArgument,
      "object path '" + shown + "': " + reason + " at character " + std::to_string(m_at + 1));
}

std::string TPathReader::ReadHost() {
  if (m_text.compare(m_at, 2, "//") != 0) return "";
  m_at += 2;
  const std::string::size_type slash = m_text.find('/', m_at);
  if (slash == std::string::npos) Refuse("a host without a namespace");
  const std::string host = m_text.substr(m_at, slash - m_at);
  m_at = slash + 1;
  return host;
}

// The namespace ends at the last colon before the class name, which holds neither "." nor "=".
void TPathReader::ReadClass(TCIMReference& path) {
  const std::string::size_type stop = m_text.find_first_of(".=\"", m_at);
  const std::string::size_type end = stop == std::string::npos ? m_text.size() : stop;
  const std::string head = m_text.substr(m_at, end - m_at);
  const std::string::size_type colon = head.rfind(':');
  if (colon != std::string::npos) path.SetNamespaceName(head.substr(0, colon));
  std::string name = colon == std::string::npos ? head : head.substr(colon + 1);
  while (!name.empty() && IsBlank(name.back())) name.pop_back();
  if (name.empty()) Refuse("a class name is missing");
  path.SetClassName(name);
  m_at = end;
}

std::string TPathReader::ReadName() {
  SkipBlanks();
  const std::string::size_type equals = m_text.find('=', m_at);
  if (equals == std::string::npos) Refuse("a key without '='");
  std::string name = m_text.substr(m_at, equals - m_at);
  while (!name.empty() && IsBlank(name.back())) name.pop_back();
  if (name.empty() || name.find_first_of("\",") != std::string::npos) Refuse("a key has no name");
  m_at = equals + 1;
  return name;
}

std::string TPathReader::ReadQuoted() {
  std::string value;
  for (++m_at; !IsAtEnd(); ++m_at) {
    char c = m_text[m_at];
    if (c == '"') {
      ++m_at;
      return value;
    }
    if (c == '\\') {
      if (++m_at == m_text.size()) break;
      c = m_text[m_at];
    }
    value += c;
  }
  Refuse("a quoted value does not end");
}

TCIMValue TPathReader::ReadBare() {
  const std::string::size_type start = m_at;
  while (!IsAtEnd() && m_text[m_at] != ',' && !IsBlank(m_text[m_at])) ++m_at;
  const std::string text = m_text.substr(start, m_at - start);
  if (IsSameName(text, "TRUE") || IsSameName(text, "FALSE")) {
    return TCIMValue::Boolean(IsSameName(text, "TRUE"));
  }
  const char* const first = text.data() + (text.rfind('+', 0) == 0 ? 1 : 0);
  const char* const last = text.data() + text.size();
  std::uint64_t number = 0;
  if (const auto [rest, error] = std::from_chars(first, last, number);
      error == std::errc() && rest == last) {
    return TCIMValue::Unsigned(ECIMType::kUInt64, number);
  }
  std::int64_t negative = 0;
  if (const auto [rest, error] = std::from_chars(first, last, negative);
      error == std::errc() && rest == last) {
    return TCIMValue::Signed(ECIMType::kSInt64, negative);
  }
  double real = 0;
  if (const auto [rest, error] = std::from_chars(first, last, real);
      error == std::errc() && rest == last) {
    return TCIMValue::Real64(real);
  }
  m_at = start;
  Refuse("a key value is neither quoted, a number nor a boolean");
}

TCIMValue TPathReader::ReadValue() {
  SkipBlanks();
  if (!IsAtEnd() && m_text[m_at] == '"') return TCIMValue(ReadQuoted());
  return ReadBare();
}

void TPathReader::ReadKeys(TCIMReference& path) {
  for (;;) {
    const std::string name = ReadName();
    if (path.FindKey(name) != nullptr) Refuse("the key " + name + " stands twice");
    path.SetKey(name, ReadValue());
    SkipBlanks();
    if (IsAtEnd()) return;
    if (m_text[m_at] != ',') Refuse("a comma is missing");
    ++m_at;
  }
}

TCIMReference TPathReader::Read() {
  TCIMReference path;
  SkipBlanks();
  path.SetHost(ReadHost());
  ReadClass(path);
  SkipBlanks();
  if (IsAtEnd() || m_text.compare(m_at, std::string::npos, "=@") == 0) return path;
  if (m_text[m_at] != '.') Refuse("'.' is missing behind the class name");
  ++m_at;
  ReadKeys(path);
  return path;
}

}  // namespace

TCIMReference::TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TKeyMap keys)
    : m_ns(std::move(ns)), m_keys(std::move(keys)) {}

TCIMReference::TCIMReference(std::string nameSpace, std::string className, TKeyMap keys)
    : m_nameSpace(std::move(nameSpace)),
      m_className(std::move(className)),
      m_keys(std::move(keys)) {}

TCIMReference TCIMReference::Parse(const std::string& path) {
  return TPathReader(path).Read();
}

std::string TCIMReference::GetPath() const {
  std::string path;
  if (!m_host.empty()) path += "//" + m_host + "/";
  if (!m_nameSpace.empty()) path += m_nameSpace + ":";
  path += m_className;
  char separator = '.';
  for (const auto& [name, value] : m_keys) {
    path += separator;
    path += name + "=";
    AppendQuoted(value.ToString(10), path);
    separator = ',';
  }
  return path;
}

boost::shared_ptr<ICIMClass> TCIMReference::GetClass() const {
  const auto refuse = [this](const char* reason) {
    return TQELException(TQELStatusCode::kNotFound,
                         "class of object path '" + GetPath() + "': " + reason);
  };
  if (m_className.empty()) throw refuse("the path names no class");
  if (!m_ns) throw refuse("the path is bound to no namespace");
  boost::shared_ptr<ICIMClass> found = m_ns->FindClass(m_className, {});
  if (!found) throw refuse("the namespace does not know it");
  return found;
}

const TCIMValue* TCIMReference::FindKey(const std::string& name) const {
  for (const auto& [key, value] : m_keys) {
    if (IsSameName(key, name)) return &value;
  }
  return nullptr;
}

void TCIMReference::SetKey(const std::string& name, const TCIMValue& value) {
  for (auto& [key, known] : m_keys) {
    if (!IsSameName(key, name)) continue;
    known = value;
    return;
  }
  m_keys.emplace(name, value);
}

TCIMReference TCIMReference::Bind(boost::shared_ptr<ICIMNamespace> ns) const {
  TCIMReference bound = *this;
  bound.m_ns = std::move(ns);
  return bound;
}

}  // namespace NZEPQEL20
