// SPDX-License-Identifier: Apache-2.0
// The frame of TCIMXMLOperations, and its chapter about what a server is made of: classes,
// namespaces, providers.
#include "platform/cimxml/TCIMXMLOperations.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/cimxml/TServerParts.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using cimxml::TReply;
using cimxml::TRequestText;

namespace {

// Where servers keep what they know about themselves.
constexpr const char* kInteropNamespaces[] = {"interop", "root/interop", "root/PG_InterOp"};

std::string Fold(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return text;
}

std::string GetClassKey(const std::string& nameSpace, const std::string& className) {
  return Fold(nameSpace + ':' + className);
}

// Servers differ in what they call a class that they do not know.
TReply AskForClass(cimxml::TServerConnection& connection, const std::string& nameSpace,
                   const std::string& what, const cimxml::TServerConnection::TWrite& write) {
  constexpr unsigned int kInvalidClass = 5;
  constexpr unsigned int kNotFound = 6;
  try {
    return connection.AskFor("GetClass", nameSpace, what, write);
  } catch (const TQELException& e) {
    if (e.GetCIMStatus() != kInvalidClass && e.GetCIMStatus() != kNotFound) throw;
    throw TQELException(TQELStatusCode::kNotFound, e.what(), e.GetCIMStatus());
  }
}

std::vector<std::string> GetNames(const std::vector<TCIMReference>& paths) {
  std::vector<std::string> names;
  for (const TCIMReference& path : paths) {
    const TCIMValue* const name = path.FindKey("Name");
    if (name != nullptr && !name->IsNull()) names.push_back(name->ToString(10));
  }
  return names;
}

void AddNames(const std::vector<std::string>& names, std::vector<std::string>& found) {
  for (const std::string& name : names) {
    const bool isKnown = std::any_of(found.begin(), found.end(), [&name](const std::string& known) {
      return IsSameName(known, name);
    });
    if (!isKnown) found.push_back(name);
  }
}

// Texts alone are typed anew: what the server itself called a number or a truth value goes back so.
TCIMReference TypeKeys(const TCIMReference& path, const TCIMClassDeclaration& declaration) {
  TCIMReference typed = path;
  const TCIMReference converted = ConvertKeys(path, &declaration);
  for (const auto& [name, value] : converted.GetKeys()) {
    const TCIMValue* const given = path.FindKey(name);
    if (given->GetType() == ECIMType::kString) typed.SetKey(name, value);
  }
  return typed;
}

}  // namespace

TCIMXMLOperations::TCIMXMLOperations(const TServerOptions& options,
                                     const std::string& defaultNamespace)
    : m_parts(std::make_unique<TParts>(options, defaultNamespace)) {}

TCIMXMLOperations::~TCIMXMLOperations() = default;

const std::string& TCIMXMLOperations::GetServerName() const {
  return m_parts->connection.GetName();
}

std::vector<TCIMReference> TCIMXMLOperations::GetStartedJobs() const {
  const std::lock_guard<std::mutex> lock(m_parts->mutex);
  return m_parts->startedJobs;
}

std::vector<std::string> TCIMXMLOperations::GetProblems() const {
  return m_parts->connection.GetProblems();
}

std::string TCIMXMLOperations::TakeLastFailure() {
  return m_parts->connection.TakeLastFailure();
}

std::shared_ptr<const TCIMClassDeclaration> TCIMXMLOperations::GetClass(
    const std::string& nameSpace, const std::string& className) {
  const std::string place = m_parts->OrDefault(nameSpace);
  const std::string key = GetClassKey(place, className);
  {
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    const auto known = m_parts->classes.find(key);
    if (known != m_parts->classes.end()) return known->second;
  }
  const std::string what = "GetClass of " + place + ':' + className;
  const auto write = [&className](TRequestText& request) {
    request.AddClassName("ClassName", className);
    request.AddFlag("LocalOnly", false);
    request.AddFlag("IncludeQualifiers", true);
    request.AddFlag("IncludeClassOrigin", true);
  };
  TReply reply = AskForClass(m_parts->connection, place, what, write);
  if (!reply.declaration || !IsSameName(reply.declaration->name, className)) {
    throw TQELException(TQELStatusCode::kFailed,
                        what + ": " + GetServerName() + ": the reply holds no such class");
  }
  const std::lock_guard<std::mutex> lock(m_parts->mutex);
  return m_parts->classes.emplace(key, std::move(reply.declaration)).first->second;
}

std::vector<std::string> TCIMXMLOperations::EnumerateClassNames(const std::string& nameSpace,
                                                                const std::string& className,
                                                                bool deep) {
  const std::string place = m_parts->OrDefault(nameSpace);
  const std::string what =
      "EnumerateClassNames of " + place + (className.empty() ? "" : ':' + className);
  const auto write = [&className, deep](TRequestText& request) {
    request.AddClassName("ClassName", className);
    request.AddFlag("DeepInheritance", deep);
  };
  return m_parts->connection.AskFor("EnumerateClassNames", place, what, write).classNames;
}

// The names that one namespace tells; no value when it cannot tell.
std::optional<std::vector<std::string>> TCIMXMLOperations::TParts::AskForNamespaces(
    TCIMXMLOperations& operations, const char* interop) {
  // The second name is that of older servers.
  for (const char* className : {"CIM_Namespace", "__Namespace"}) {
    try {
      return GetNames(operations.EnumerateInstanceNames(interop, className));
    } catch (const TQELException& e) {
      constexpr unsigned int kInvalidNamespace = 3;
      if (e.GetCIMStatus() == TQELException::kNoCIMStatus) throw;
      if (e.GetCIMStatus() == kInvalidNamespace) break;
    }
  }
  return std::nullopt;
}

std::vector<std::string> TCIMXMLOperations::GetNamespaces() {
  {
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    if (!m_parts->namespaces.empty()) return m_parts->namespaces;
  }
  std::vector<std::string> found = {m_parts->defaultNamespace};
  try {
    std::optional<std::vector<std::string>> told;
    for (const char* interop : kInteropNamespaces) {
      if (!told) told = TParts::AskForNamespaces(*this, interop);
    }
    if (told) AddNames(*told, found);
  } catch (const TQELException&) {
    // Without an answer there is nothing to remember; the default namespace can be tried anyway.
    return found;
  }
  const std::lock_guard<std::mutex> lock(m_parts->mutex);
  m_parts->namespaces = found;
  return found;
}

TCIMReference TCIMXMLOperations::TParts::Type(const TCIMReference& path) {
  std::shared_ptr<const TCIMClassDeclaration> known;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found =
        classes.find(GetClassKey(OrDefault(path.GetNamespaceName()), path.GetClassName()));
    if (found != classes.end()) known = found->second;
  }
  return known ? TypeKeys(path, *known) : path;
}

std::vector<ICIMOperations::TProviderInfo> TCIMXMLOperations::GetProviders() {
  return {{GetServerName(), m_parts->defaultNamespace,
           EnumerateClassNames(m_parts->defaultNamespace, {}, true)}};
}

}  // namespace NZEPQEL20
