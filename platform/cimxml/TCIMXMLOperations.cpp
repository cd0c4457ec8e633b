// SPDX-License-Identifier: Apache-2.0
// The frame of TCIMXMLOperations, and its chapter about what a server is made of: classes,
// namespaces, providers.
#include "platform/cimxml/TCIMXMLOperations.h"

#include <algorithm>
#include <utility>

#include "platform/cimxml/TServerParts.h"

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

}  // namespace

TCIMXMLOperations::TCIMXMLOperations(const TServerOptions& options, std::string defaultNamespace)
    : m_parts(std::make_unique<TParts>(options, std::move(defaultNamespace))) {}

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

std::shared_ptr<const TCIMClassDeclaration> TCIMXMLOperations::GetClass(
    const std::string& nameSpace, const std::string& className) {
  const std::string key = Fold(nameSpace + ':' + className);
  {
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    const auto known = m_parts->classes.find(key);
    if (known != m_parts->classes.end()) return known->second;
  }
  const std::string what = "GetClass of " + nameSpace + ':' + className;
  const auto write = [&className](TRequestText& request) {
    request.AddClassName("ClassName", className);
    request.AddFlag("LocalOnly", false);
    request.AddFlag("IncludeQualifiers", true);
    request.AddFlag("IncludeClassOrigin", true);
  };
  TReply reply = AskForClass(m_parts->connection, nameSpace, what, write);
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
  const std::string what = "EnumerateClassNames of " + nameSpace + ':' + className;
  const auto write = [&className, deep](TRequestText& request) {
    request.AddClassName("ClassName", className);
    request.AddFlag("DeepInheritance", deep);
  };
  return m_parts->connection.AskFor("EnumerateClassNames", nameSpace, what, write).classNames;
}

std::vector<std::string> TCIMXMLOperations::GetNamespaces() {
  {
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    if (!m_parts->namespaces.empty()) return m_parts->namespaces;
  }
  std::vector<std::string> found = {m_parts->defaultNamespace};
  for (const char* interop : kInteropNamespaces) {
    try {
      for (std::string& name : GetNames(EnumerateInstanceNames(interop, "CIM_Namespace"))) {
        const bool isKnown = std::any_of(found.begin(), found.end(), [&](const std::string& known) {
          return IsSameName(known, name);
        });
        if (!isKnown) found.push_back(std::move(name));
      }
      break;
    } catch (const TQELException& e) {
      // A refusal says only that this is not the place; without a server there is no other.
      if (e.GetCIMStatus() == TQELException::kNoCIMStatus) throw;
    }
  }
  const std::lock_guard<std::mutex> lock(m_parts->mutex);
  m_parts->namespaces = found;
  return found;
}

std::vector<ICIMOperations::TProviderInfo> TCIMXMLOperations::GetProviders() {
  return {{GetServerName(), m_parts->defaultNamespace,
           EnumerateClassNames(m_parts->defaultNamespace, {}, true)}};
}

}  // namespace NZEPQEL20
