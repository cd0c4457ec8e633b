// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/exchanges/TExchangeFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace diagstest {
namespace {

constexpr char kSection[] = "=== ";

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// Text of every section, with the lines that go on joined to those above.
std::vector<std::pair<std::string, std::string>> ReadSections(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": cannot be read");
  std::vector<std::pair<std::string, std::string>> sections;
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, 4, kSection) == 0) {
      sections.emplace_back(line.substr(4), "");
    } else if (sections.empty()) {
      if (!line.empty() && line[0] != '#')
        throw std::runtime_error(path + ": text before sections");
    } else {
      std::string& text = sections.back().second;
      const bool goesOn = !line.empty() && line[0] == '+';
      if (goesOn && !text.empty()) text.pop_back();
      text += (goesOn ? line.substr(1) : line) + "\n";
    }
  }
  return sections;
}

std::pair<std::string, std::string> SplitHead(const std::string& text) {
  const std::size_t end = text.find("\n\n");
  if (end == std::string::npos) throw std::runtime_error("no empty line after the head");
  return {text.substr(0, end + 1), text.substr(end + 2)};
}

std::string ToWireLines(const std::string& text) {
  std::string wire;
  for (const std::string& line : SplitLines(text)) wire += line + "\r\n";
  return wire;
}

void Replace(std::string& text, const std::string& what, const std::string& by) {
  const std::size_t at = text.find(what);
  if (at != std::string::npos) text.replace(at, what.size(), by);
}

std::string PadLength(std::size_t length) {
  const std::string digits = std::to_string(length);
  return std::string(digits.size() < 10 ? 10 - digits.size() : 0, '0') + digits;
}

std::string ToHex(std::size_t number) {
  std::ostringstream text;
  text << std::hex << number;
  return text.str();
}

}  // namespace

TExchangeFile::TExchangeFile(const std::string& path) {
  try {
    for (const TSection& section : ReadSections(path)) Take(section);
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(path + ": " + e.what());
  }
  if (m_operation.empty() || m_steps.empty() || m_result.empty()) {
    throw std::runtime_error(path + ": needs an operation, requests and a result");
  }
}

void TExchangeFile::Take(const TSection& section) {
  const auto& [name, text] = section;
  if (name == "operation") {
    m_operation = SplitLines(text);
  } else if (name == "result") {
    m_result = text;
  } else if (name == "request") {
    TakeRequest(text);
  } else if (m_steps.empty()) {
    throw std::runtime_error("section " + name + " without a request");
  } else if (name == "reply") {
    TakeReply(text);
  } else if (name == "chunk") {
    AddChunk(text);
  } else if (name == "trailers") {
    m_steps.back().reply += "0\r\n" + ToWireLines(text) + "\r\n";
  } else {
    throw std::runtime_error("unknown section " + name);
  }
}

void TExchangeFile::TakeRequest(const std::string& text) {
  const auto [head, body] = SplitHead(text);
  m_steps.push_back({SplitLines(head), body, ""});
}

void TExchangeFile::TakeReply(const std::string& text) {
  auto [head, body] = SplitHead(text);
  Replace(head, "@0", PadLength(body.size()));
  Replace(head, "@", std::to_string(body.size()));
  m_steps.back().reply = ToWireLines(head) + "\r\n" + body;
}

void TExchangeFile::AddChunk(const std::string& text) {
  m_steps.back().reply += ToHex(text.size()) + "\r\n" + text + "\r\n";
}

std::vector<std::string> ListExchanges(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".exchange") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace diagstest
