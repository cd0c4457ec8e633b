// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/TXmlParser.h"

namespace NZEPQEL20 {

/// Writes every event down as one text: `<a k=v>`, `</a>`, `[text]`, `?target data`,
/// `notation name public system`, `!line:error`.
class TRecordingXmlParser : public TXmlParser {
 public:
  void StartElement(const char* name, TXmlAttributes& attributes) override {
    std::string event = "<" + std::string(name);
    for (const auto& [key, value] : attributes) {
      event.append(" ").append(key).append("=").append(value);
    }
    m_events.push_back(event + ">");
  }
  void EndElement(const char* name) override { m_events.push_back("</" + std::string(name) + ">"); }
  void processingInstruction(const char* target, const char* data) override {
    m_events.push_back("?" + std::string(target) + " " + data);
  }
  void characters(const char* text, unsigned int length) override {
    // The text as a caller sees it that trusts the NUL, if the length agrees.
    const std::string seen(text);
    m_events.push_back(seen.size() == length ? "[" + seen + "]" : "wrong length");
  }
  void notationDecl(const char* name, const char* publicId, const char* systemId) override {
    const auto orNone = [](const char* id) { return std::string(id == nullptr ? "-" : id); };
    m_events.push_back("notation " + std::string(name) + " " + orNone(publicId) + " " +
                       orNone(systemId));
  }
  void FatalError(const char* message) override {
    m_events.push_back("!" + std::to_string(GetCurLine()) + ":" + message);
  }

  std::vector<std::string> m_events;
};

}  // namespace NZEPQEL20
