// SPDX-License-Identifier: Apache-2.0
// How an object path is read: a small scanner over the text, each step bounded by its end.
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kShownText = 200;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool IsNameByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         byte >= 0x80;
}

class TPathReader {
 public:
  explicit TPathReader(const std::string& text) : m_text(text) {}

  TCIMReference Read() {
    SkipBlanks();
    ReadHost();
    ReadNamespace();
    m_path.SetClassName(ReadName("a class name"));
    if (At('=')) {
      ReadSingleton();
    } else if (At('.')) {
      ++m_at;
      ReadKeys();
    }
    SkipBlanks();
    if (!AtEnd()) {
      Fail("the end of the path");
    }
    return m_path;
  }

 private:
  bool AtEnd() const { return m_at >= m_text.size(); }
  bool At(char c) const { return !AtEnd() && m_text[m_at] == c; }

  void SkipBlanks() {
    while (!AtEnd() && IsBlank(m_text[m_at])) {
      ++m_at;
    }
  }

  [[noreturn]] void Fail(const std::string& wanted) const {
    const std::string shown =
        m_text.size() > kShownText ? m_text.substr(0, kShownText) + "..." : m_text;
    throw TQELException(TQELStatusCode::kInvalidArgument, "object path '" + shown + "': expected " +
                                                              wanted + " at character " +
                                                              std::to_string(m_at + 1));
  }

  void ReadHost() {
    if (m_text.compare(m_at, 2, "//") != 0) {
      return;
    }
    m_at += 2;
    const std::size_t end = m_text.find('/', m_at);
    if (end == std::string::npos || end == m_at) {
      Fail("a host name and \"/\"");
    }
    m_path.SetHost(m_text.substr(m_at, end - m_at));
    m_at = end + 1;
  }

  // Class and key names hold no colon, so the last one before the first value ends the namespace.
  void ReadNamespace() {
    const std::size_t headEnd = m_text.find_first_of("=\"", m_at);
    const std::size_t colon = m_text.substr(0, headEnd).rfind(':');
    if (colon == std::string::npos || colon < m_at) {
      return;
    }
    if (At('/')) {
      ++m_at;
    }
    const std::size_t start = m_at;
    for (; m_at < colon; ++m_at) {
      const char c = m_text[m_at];
      if (!IsNameByte(c) && c != '/' && c != '-' && c != '.') {
        Fail("a namespace name");
      }
    }
    if (start == colon) {
      Fail("a namespace name");
    }
    m_path.SetNamespaceName(m_text.substr(start, colon - start));
    m_at = colon + 1;
  }

  std::string ReadName(const char* wanted) {
    const std::size_t start = m_at;
    while (!AtEnd() && IsNameByte(m_text[m_at])) {
      ++m_at;
    }
    if (m_at == start) {
      Fail(wanted);
    }
    return m_text.substr(start, m_at - start);
  }

  void ReadSingleton() {
    ++m_at;
    if (!At('@')) {
      Fail("\"@\"");
    }
    ++m_at;
  }

  void ReadKeys() {
    for (;;) {
      SkipBlanks();
      const std::size_t start = m_at;
      const std::string name = ReadName("a key name");
      if (m_path.FindKey(name) != nullptr) {
        m_at = start;
        Fail("a key that is not given twice");
      }
      SkipBlanks();
      if (!At('=')) {
        Fail("\"=\"");
      }
      ++m_at;
      SkipBlanks();
      m_path.SetKey(name, At('"') ? TCIMValue(ReadQuoted()) : ReadBare());
      SkipBlanks();
      if (!At(',')) {
        return;
      }
      ++m_at;
    }
  }

  // A backslash before anything but itself and a quote stands for itself.
  std::string ReadQuoted() {
    std::string value;
    for (++m_at; !AtEnd(); ++m_at) {
      char c = m_text[m_at];
      if (c == '"') {
        ++m_at;
        return value;
      }
      if (c == '\\' && m_at + 1 < m_text.size() &&
          (m_text[m_at + 1] == '"' || m_text[m_at + 1] == '\\')) {
        c = m_text[++m_at];
      }
      value += c;
    }
    Fail("a closing quote");
  }

  TCIMValue ReadBare() {
    const std::size_t end = m_text.find_first_of(", \t\n\r", m_at);
    const std::string word = m_text.substr(m_at, end == std::string::npos ? end : end - m_at);
    if (word.empty()) {
      Fail("a key value");
    }
    TCIMValue value;
    if (IsSameName(word, "TRUE") || IsSameName(word, "FALSE")) {
      value = TCIMValue::Boolean(word.size() == 4);
    } else if (!ReadNumber(word, value)) {
      Fail("a value in quotes, a number, TRUE or FALSE");
    }
    m_at += word.size();
    return value;
  }

  template <typename TNumber, typename... TForm>
  static bool IsWhole(const char* first, const char* last, TNumber& number, TForm... form) {
    const auto [end, error] = std::from_chars(first, last, number, form...);
    return error == std::errc() && end == last && first != last;
  }

  static bool ReadNumber(const std::string& word, TCIMValue& value) {
    const char* first = word.data();
    const char* const last = first + word.size();
    if (*first == '+') {
      ++first;
      if (first == last || *first == '-') {
        return false;
      }
    }
    std::uint64_t unsignedNumber = 0;
    std::int64_t signedNumber = 0;
    double real = 0;
    const bool isHex = last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X');
    if (isHex ? IsWhole(first + 2, last, unsignedNumber, 16)
              : IsWhole(first, last, unsignedNumber, 10)) {
      value = TCIMValue::Unsigned(ECIMType::kUInt64, unsignedNumber);
      return true;
    }
    if (IsWhole(first, last, signedNumber, 10)) {
      value = TCIMValue::Signed(ECIMType::kSInt64, signedNumber);
      return true;
    }
    // Only digits make a number; the library would also take "inf" and "nan", and an integer
    // beyond 64 bits must not lose its last digits as a real.
    if (word.find_first_of(".eE") == std::string::npos ||
        word.find_first_not_of("0123456789+-.eE") != std::string::npos ||
        !IsWhole(first, last, real)) {
      return false;
    }
    value = TCIMValue::Real64(real);
    return true;
  }

  const std::string& m_text;
  std::size_t m_at = 0;
  TCIMReference m_path;
};

}  // namespace

TCIMReference TCIMReference::Parse(const std::string& path) {
  return TPathReader(path).Read();
}

}  // namespace NZEPQEL20
