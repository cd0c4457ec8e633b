// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "tests/support/TScriptedObject.h"

namespace scripted {

using TNamespacePtr = boost::shared_ptr<NZEPQEL20::ICIMNamespace>;
using TInstancePtr = boost::shared_ptr<NZEPQEL20::ICIMInstance>;
using TObjectPtr = std::shared_ptr<TScriptedObject>;

/// The namespace in which every scripted object lives.
extern const char kNamespaceText[];

/// Objects, classes and providers, and the namespaces "root", "plugin", "upcall" and "host"
/// through which they are seen. It must outlive whatever was obtained through it.
class TScriptedWorld {
 public:
  struct TProvider {
    std::string name;
    std::vector<std::string> classNames;
  };

  TScriptedWorld();
  TScriptedWorld(const TScriptedWorld&) = delete;
  TScriptedWorld& operator=(const TScriptedWorld&) = delete;

  /// A new object with the one key `key`, to be had by fetching; not enumerated yet.
  TObjectPtr Add(const std::string& className, const std::string& key, const std::string& value);
  /// Lets the enumerations of `className` show `object` from the one numbered `first` (from 0) on.
  void Show(const std::string& className, const TObjectPtr& object, unsigned int first = 0);
  /// Lets FindClass know `className`, with no instances if none are shown.
  void AddClass(const std::string& className) { m_classes[className]; }
  void AddProvider(const TProvider& provider) { m_providers.push_back(provider); }

  /// The namespace that the runner is made with.
  TNamespacePtr GetRoot() const { return GetNamespace("root"); }
  /// The namespace that the host passes with each call.
  TNamespacePtr GetHost() const { return GetNamespace("host"); }
  TNamespacePtr GetNamespace(const std::string& label) const { return m_namespaces.at(label); }

  /// An instance that shows `object` as it was fetched last.
  TInstancePtr MakeInstance(const TObjectPtr& object);
  /// The same after one more fetch.
  TInstancePtr FetchInstance(const TObjectPtr& object);

  bool HasClass(const std::string& className) const;
  /// Null when no object has this path.
  TObjectPtr Find(const NZEPQEL20::TCIMReference& path) const;
  /// What this enumeration of `className` shows; counts the enumerations.
  std::vector<TObjectPtr> Enumerate(const std::string& className);
  const std::vector<TProvider>& GetProviders() const { return m_providers; }
  /// `value`, a reference led through the root namespace.
  NZEPQEL20::TCIMValue Bind(const NZEPQEL20::TCIMValue& value) const;

 private:
  struct TShown {
    TObjectPtr object;
    unsigned int first;
  };
  struct TClass {
    std::vector<TShown> shown;
    unsigned int enumerations = 0;
  };

  TInstancePtr Wrap(const TObjectPtr& object, const TScriptedProperties& properties);

  std::map<std::string, TNamespacePtr> m_namespaces;
  std::map<std::string, TClass> m_classes;
  std::map<std::string, TObjectPtr> m_objects;
  std::vector<TProvider> m_providers;
};

/// `keys` as the transcript shows them: "{name=value,...}".
std::string Show(const NZEPQEL20::TKeyMap& keys);

}  // namespace scripted
