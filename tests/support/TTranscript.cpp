// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TTranscript.h"

#include <cstdio>

namespace scripted {

namespace {

const char kOut[] = "out ";

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

std::string GetKind(const std::string& line) {
  return line.substr(0, line.find(' '));
}

}  // namespace

std::string Escape(const std::string& bytes) {
  std::string shown;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '\n') {
      shown += "\\n";
    } else if (byte == '\b') {
      shown += "\\b";
    } else if (code < 0x20) {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02x", code);
      shown += hex;
    } else {
      shown += byte;
    }
  }
  return shown;
}

TTranscript& TTranscript::Get() {
  static TTranscript transcript;
  return transcript;
}

void TTranscript::Clear() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_lines.clear();
}

void TTranscript::Add(const std::string& kind, const std::string& text) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_lines.push_back(text.empty() ? kind : kind + " " + text);
}

void TTranscript::AddOutput(const std::string& bytes) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_lines.empty() || !StartsWith(m_lines.back(), kOut)) {
    m_lines.emplace_back(kOut);
  }
  m_lines.back() += Escape(bytes);
}

TTranscript::TLines TTranscript::All() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_lines;
}

TTranscript::TLines TTranscript::Only(const std::set<std::string>& kinds) const {
  TLines chosen;
  for (const std::string& line : All()) {
    if (kinds.count(GetKind(line)) == 0) {
      continue;
    }
    if (StartsWith(line, kOut) && !chosen.empty() && StartsWith(chosen.back(), kOut)) {
      chosen.back() += line.substr(sizeof kOut - 1);
    } else {
      chosen.push_back(line);
    }
  }
  return chosen;
}

TTranscript::TLines TTranscript::Logs() const {
  TLines texts;
  for (const std::string& line : All()) {
    if (StartsWith(line, "log")) {
      const std::size_t blank = line.find(' ');
      texts.push_back(blank == std::string::npos ? "" : line.substr(blank + 1));
    }
  }
  return texts;
}

std::string TTranscript::Output() const {
  const TLines lines = Only({"out"});
  return lines.empty() ? "" : lines.front().substr(sizeof kOut - 1);
}

std::size_t TTranscript::Count(const std::string& prefix) const {
  std::size_t count = 0;
  for (const std::string& line : All()) {
    count += StartsWith(line, prefix) ? 1U : 0U;
  }
  return count;
}

}  // namespace scripted
