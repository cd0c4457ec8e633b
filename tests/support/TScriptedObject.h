// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "tests/support/TGate.h"

namespace scripted {

/// What a method of a scripted object does: waits at its gate, if it has one, and leaves these
/// out-parameters.
struct TScriptedMethod {
  NZEPQEL20::TKeyMap outParameters;
  std::shared_ptr<TGate> gate;
};

/// A property's value and, where it differs from ToString(10), the text that a person reads.
struct TScriptedProperty {
  std::string name;
  NZEPQEL20::TCIMValue value;
  std::optional<std::string> text;
};

using TScriptedProperties = std::vector<TScriptedProperty>;

/// The property called `name`, compared without case; null when there is none.
TScriptedProperty* FindProperty(TScriptedProperties& properties, const std::string& name);

/// One object of the scripted world: its path, its methods, and its properties as they are at each
/// fetch.
class TScriptedObject {
 public:
  explicit TScriptedObject(const NZEPQEL20::TCIMReference& path) : m_path(path), m_states(1) {}

  const NZEPQEL20::TCIMReference& GetPath() const { return m_path; }

  /// Sets a property from the current state on.
  TScriptedObject& Set(const std::string& name, const NZEPQEL20::TCIMValue& value);
  TScriptedObject& SetText(const std::string& name, const NZEPQEL20::TCIMValue& value,
                           const std::string& text);
  TScriptedObject& Remove(const std::string& name);
  /// What is set from here on holds from the next fetch on; the last state stays.
  TScriptedObject& AtNextFetch();
  TScriptedObject& SetMethod(const std::string& name, const TScriptedMethod& method);
  /// Handed out as a plain instance, not as one of CMPI's.
  TScriptedObject& MakePlain();

  bool IsPlain() const { return m_isPlain; }
  /// Null when there is no such method.
  const TScriptedMethod* FindMethod(const std::string& name) const;
  /// The properties of the next fetch, which this is.
  TScriptedProperties Fetch();
  /// The properties of the last fetch.
  TScriptedProperties Look() const;
  unsigned int GetFetchCount() const { return m_fetches; }

 private:
  NZEPQEL20::TCIMReference m_path;
  std::vector<TScriptedProperties> m_states;
  std::map<std::string, TScriptedMethod> m_methods;
  unsigned int m_fetches = 0;
  bool m_isPlain = false;
};

}  // namespace scripted
