// SPDX-License-Identifier: Apache-2.0
// The form with a section for each class, as sfcb reads it.
#include <map>
#include <tuple>
#include <utility>

#include "platform/cmpi/TRegistrationTaker.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

namespace {

constexpr char kSectionRule[] = "R11";

/// A section while its lines are read.
struct TSection {
  std::string className;
  std::string source;
  std::map<std::string, std::string> values;  ///< By key in lower case.
  bool isFaulty = false;                      ///< Said already; it does not count.

  const std::string& Get(const std::string& key) const {
    static const std::string none;
    const auto found = values.find(key);
    return found == values.end() ? none : found->second;
  }
};

/// The key of `word` in its canonical form; empty for one that does not exist.
std::string FindKey(const std::string& word) {
  if (IsSameName(word, "namespaces")) return "namespace";
  for (const char* key :
       {"provider", "location", "type", "namespace", "unload", "parameters", "user", "group"}) {
    if (IsSameName(word, key)) return key;
  }
  return {};
}

/// Words of sfcb's own kinds of provider, which have no place in another host.
bool IsServerType(const std::string& type) {
  return IsSameName(type, "class") || IsSameName(type, "qualifier");
}

class TSectionReader {
 public:
  TSectionReader(std::string file, TRegistrationTaker& taker)
      : m_file(std::move(file)), m_taker(taker) {}

  void Read(const TTextLine& line) {
    const std::string fault = FindLineFault(line);
    if (!fault.empty()) return Fail(line, fault, "write text");
    const std::string text = Trim(line.text);
    if (text.empty() || text.front() == '#') return;
    if (text.front() == '[') {
      Begin(line, text);
    } else {
      ReadKey(line, text);
    }
  }

  void End() {
    if (!m_section.className.empty() && !m_section.isFaulty) Take();
    m_section = TSection();
  }

 private:
  void Fail(const TTextLine& line, const std::string& reason, const std::string& remedy) {
    m_taker.Fail(line.source + ": " + reason, remedy, kSectionRule);
    m_section.isFaulty = true;
  }

  void Begin(const TTextLine& line, const std::string& text) {
    End();
    const std::size_t close = text.find(']');
    const std::string name = Trim(text.substr(1, close == std::string::npos ? close : close - 1));
    m_section.className = name.empty() ? "?" : name;
    m_section.source = line.source;
    const std::string rest = close == std::string::npos ? "" : Trim(text.substr(close + 1));
    if (close == std::string::npos || (!rest.empty() && rest.front() != '#')) {
      Fail(line, "expected [ClassName], found \"" + text + "\"", "write the class in brackets");
    } else if (IsServerClass(name)) {
      m_taker.Warn(line.source + ": class " + name +
                       " is a provider of the server's own and is "
                       "not driven",
                   "leave the section out", kSectionRule);
      m_section.isFaulty = true;
    } else if (!IsPlainName(name)) {
      Fail(line, "\"" + name + "\" is not a class name", "write the class in brackets");
    }
  }

  static bool IsServerClass(const std::string& name) {
    return name.size() > 2 && name.front() == '$' && name.back() == '$';
  }

  void ReadKey(const TTextLine& line, const std::string& text) {
    if (m_section.className.empty()) {
      return m_taker.Fail(line.source + ": \"" + text + "\" is before the first [ClassName]",
                          "start with the class in brackets", kSectionRule);
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
      return Fail(line, "expected \"key: value\", found \"" + text + "\"", "write key: value");
    }
    const std::string word = Trim(text.substr(0, colon));
    const std::string key = FindKey(word);
    if (key.empty()) {
      return Fail(line, "unknown key \"" + word + "\"",
                  "write provider, location, type, namespace, unload, parameters, user or group");
    }
    std::string& value = m_section.values[key];
    if (!value.empty()) {
      m_taker.Warn(line.source + ": key " + key + " is there twice; the last one holds",
                   "leave one of them", kSectionRule);
    }
    value = Trim(text.substr(colon + 1));
  }

  void Fault(const std::string& reason, const std::string& remedy) {
    m_taker.Fail(m_section.source + ": class " + m_section.className + ": " + reason, remedy,
                 kSectionRule);
  }

  /// False when a value that every section needs is missing; that has been said then.
  bool HasAll() {
    for (const char* key : {"provider", "location", "type", "namespace"}) {
      if (!SplitWords(m_section.Get(key)).empty()) continue;
      Fault(std::string("has no ") + key, std::string("add \"") + key + ": ...\"");
      return false;
    }
    return true;
  }

  bool MarkTypes(TRegistration& entry) {
    for (const std::string& type : SplitWords(m_section.Get("type"))) {
      if (MarkType(entry, type)) continue;
      if (!IsServerType(type)) {
        Fault("unknown provider type \"" + type + "\"", kTypeRemedy);
        return false;
      }
      m_taker.Warn(
          m_section.source + ": type " + type + " is of the server's own and is not driven",
          "leave it out", kSectionRule);
    }
    return true;
  }

  void WarnOfUnused() {
    for (const char* key : {"user", "group"}) {
      if (m_section.Get(key).empty()) continue;
      m_taker.Warn(m_section.source + ": " + key + " \"" + m_section.Get(key) +
                       "\" is not heeded; a provider runs as whoever runs the tests",
                   "leave it out, or run the tests as that user", kSectionRule);
    }
  }

  /// False when the same provider was registered for the class with other types.
  bool IsOneOfAKind(const TRegistration& entry) {
    const auto types = std::make_tuple(entry.isInstance, entry.isAssociation, entry.isMethod,
                                       entry.isProperty, entry.isIndication);
    const std::string pair = FoldName(entry.className + ' ' + entry.providerName);
    const auto [known, isNew] = m_types.emplace(pair, std::make_pair(types, entry.source));
    if (isNew || known->second.first == types) return true;
    Fault("provider " + entry.providerName + " is registered for it with other types at " +
              known->second.second,
          "write all types in one section");
    return false;
  }

  void Take() {
    TRegistration entry;
    entry.className = m_section.className;
    entry.source = m_section.source;
    if (!HasAll() || !MarkTypes(entry)) return;
    entry.providerName = SplitWords(m_section.Get("provider")).front();
    if (!IsProviderName(entry.providerName)) {
      return Fault("\"" + entry.providerName + "\" is not a provider name",
                   "write letters, digits and \"_\"");
    }
    if (!IsOneOfAKind(entry)) return;
    WarnOfUnused();
    entry.parameters = m_section.Get("parameters");
    const std::string location = SplitWords(m_section.Get("location")).front();
    for (const std::string& nameSpace : SplitWords(m_section.Get("namespace"))) {
      entry.nameSpace = nameSpace;
      m_taker.Add(entry, location, m_file);
      if (nameSpace == "*") break;
    }
  }

  using TTypes = std::tuple<bool, bool, bool, bool, bool>;

  const std::string m_file;
  TRegistrationTaker& m_taker;
  TSection m_section;
  std::map<std::string, std::pair<TTypes, std::string>> m_types;
};

}  // namespace

void ReadRegistrationSections(const std::string& text, const std::string& file,
                              TRegistrationTaker& taker) {
  TSectionReader reader(file, taker);
  for (const TTextLine& line : SplitLines(text, file)) reader.Read(line);
  reader.End();
}

}  // namespace NZEPQEL20
