// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FakeOperations.h"

#include <algorithm>
#include <utility>

namespace NZEPQEL20 {
namespace {

constexpr unsigned int kInvalidClass = 5;
constexpr unsigned int kNotFound = 6;
constexpr unsigned int kNotSupported = 7;

[[noreturn]] void Refuse(unsigned int status, const std::string& what) {
  throw TQELException(TQELStatusCode::kCIMError, what, status);
}

}  // namespace

void TFakeOperations::AddNamespace(const std::string& nameSpace) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_spaces.emplace(nameSpace, TSpace()).second) m_order.push_back(nameSpace);
}

void TFakeOperations::AddClass(const std::string& nameSpace,
                               const TCIMClassDeclaration& declaration) {
  AddNamespace(nameSpace);
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_spaces[nameSpace].classes.push_back(std::make_shared<const TCIMClassDeclaration>(declaration));
}

void TFakeOperations::AddInstance(const std::string& nameSpace, TCIMInstanceData instance) {
  AddNamespace(nameSpace);
  instance.path.SetNamespaceName(nameSpace);
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_spaces[nameSpace].instances.push_back(std::move(instance));
}

void TFakeOperations::AddProvider(const TProviderInfo& provider) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_providers.push_back(provider);
}

void TFakeOperations::SetMethod(TMethod method) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_method = std::move(method);
}

void TFakeOperations::Fail(const std::string& operation, const std::string& nameSpace,
                           const TQELException& failure) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_failures.insert_or_assign(operation + " " + nameSpace, failure);
}

std::vector<std::string> TFakeOperations::GetCalls() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_calls;
}

std::size_t TFakeOperations::CountCalls(const std::string& operation) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return static_cast<std::size_t>(std::count_if(
      m_calls.begin(), m_calls.end(),
      [&operation](const std::string& call) { return call.rfind(operation + " ", 0) == 0; }));
}

void TFakeOperations::Note(const std::string& operation, const TCIMReference& about) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_calls.push_back(operation + " " + about.GetPath());
  const auto failure = m_failures.find(operation + " " + about.GetNamespaceName());
  if (failure != m_failures.end()) throw TQELException(failure->second);
}

void TFakeOperations::RefuseAssociation(const std::string& operation, const TCIMReference& path) {
  Note(operation, path);
  Refuse(kNotSupported, operation + " " + path.GetPath());
}

std::shared_ptr<const TCIMClassDeclaration> TFakeOperations::FindClass(
    const std::string& nameSpace, const std::string& className) const {
  const auto space = m_spaces.find(nameSpace);
  if (space == m_spaces.end()) return nullptr;
  for (const auto& declaration : space->second.classes) {
    if (IsSameName(declaration->name, className)) return declaration;
  }
  return nullptr;
}

bool TFakeOperations::IsKindOf(const std::string& nameSpace, std::string className,
                               const std::string& ancestor) const {
  while (!IsSameName(className, ancestor)) {
    const auto declaration = FindClass(nameSpace, className);
    if (!declaration || declaration->superclass.empty()) return false;
    className = declaration->superclass;
  }
  return true;
}

std::vector<TCIMInstanceData> TFakeOperations::Select(const std::string& nameSpace,
                                                      const std::string& className) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  std::vector<TCIMInstanceData> selected;
  for (const TCIMInstanceData& instance : m_spaces[nameSpace].instances) {
    if (IsKindOf(nameSpace, instance.path.GetClassName(), className)) selected.push_back(instance);
  }
  return selected;
}

TCIMInstanceData& TFakeOperations::Require(const TCIMReference& path) {
  for (TCIMInstanceData& instance : m_spaces[path.GetNamespaceName()].instances) {
    if (instance.path == path) return instance;
  }
  Refuse(kNotFound, "no instance " + path.GetPath());
}

std::shared_ptr<const TCIMClassDeclaration> TFakeOperations::GetClass(
    const std::string& nameSpace, const std::string& className) {
  Note("GetClass", TCIMReference(nameSpace, className));
  const std::lock_guard<std::mutex> lock(m_mutex);
  auto declaration = FindClass(nameSpace, className);
  if (!declaration) Refuse(kInvalidClass, "no class " + nameSpace + ":" + className);
  return declaration;
}

std::vector<std::string> TFakeOperations::EnumerateClassNames(const std::string& nameSpace,
                                                              const std::string& className,
                                                              bool deep) {
  Note("EnumerateClassNames", TCIMReference(nameSpace, className));
  const std::lock_guard<std::mutex> lock(m_mutex);
  std::vector<std::string> names;
  for (const auto& declaration : m_spaces[nameSpace].classes) {
    const bool isChild = IsSameName(declaration->superclass, className);
    const bool isBelow = deep && !IsSameName(declaration->name, className) &&
                         (className.empty() || IsKindOf(nameSpace, declaration->name, className));
    if (isChild || isBelow) names.push_back(declaration->name);
  }
  return names;
}

void TFakeOperations::EnumerateInstances(const std::string& nameSpace, const std::string& className,
                                         const TInstanceSink& sink) {
  Note("EnumerateInstances", TCIMReference(nameSpace, className));
  for (TCIMInstanceData& instance : Select(nameSpace, className)) {
    if (!sink(std::move(instance))) return;
  }
}

std::vector<TCIMReference> TFakeOperations::EnumerateInstanceNames(const std::string& nameSpace,
                                                                   const std::string& className) {
  Note("EnumerateInstanceNames", TCIMReference(nameSpace, className));
  std::vector<TCIMReference> names;
  for (const TCIMInstanceData& instance : Select(nameSpace, className)) {
    names.push_back(instance.path);
  }
  return names;
}

TCIMInstanceData TFakeOperations::GetInstance(const TCIMReference& path) {
  Note("GetInstance", path);
  const std::lock_guard<std::mutex> lock(m_mutex);
  return Require(path);
}

TCIMReference TFakeOperations::CreateInstance(const std::string& nameSpace,
                                              const TCIMInstanceData& instance) {
  TCIMReference path = instance.path;
  path.SetNamespaceName(nameSpace);
  Note("CreateInstance", path);
  AddInstance(nameSpace, instance);
  return path;
}

void TFakeOperations::ModifyInstance(const TCIMInstanceData& instance) {
  Note("ModifyInstance", instance.path);
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(instance.path).properties = instance.properties;
}

void TFakeOperations::DeleteInstance(const TCIMReference& path) {
  Note("DeleteInstance", path);
  const std::lock_guard<std::mutex> lock(m_mutex);
  const TCIMInstanceData* const gone = &Require(path);
  auto& instances = m_spaces[path.GetNamespaceName()].instances;
  instances.erase(instances.begin() + (gone - instances.data()));
}

void TFakeOperations::Associators(const TCIMReference& path, const TAssociationFilter& /*filter*/,
                                  const TInstanceSink& /*sink*/) {
  RefuseAssociation("Associators", path);
}

std::vector<TCIMReference> TFakeOperations::AssociatorNames(const TCIMReference& path,
                                                            const TAssociationFilter& /*filter*/) {
  RefuseAssociation("AssociatorNames", path);
}

void TFakeOperations::References(const TCIMReference& path, const TAssociationFilter& /*filter*/,
                                 const TInstanceSink& /*sink*/) {
  RefuseAssociation("References", path);
}

std::vector<TCIMReference> TFakeOperations::ReferenceNames(const TCIMReference& path,
                                                           const TAssociationFilter& /*filter*/) {
  RefuseAssociation("ReferenceNames", path);
}

TCIMValue TFakeOperations::InvokeMethod(const TCIMReference& path, const std::string& method,
                                        TKeyMap& parameters) {
  Note("InvokeMethod", path);
  TMethod run;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    run = m_method;
  }
  if (!run) Refuse(kNotSupported, "no method " + method);
  return run(path, method, parameters);
}

std::vector<std::string> TFakeOperations::GetNamespaces() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_order;
}

std::vector<ICIMOperations::TProviderInfo> TFakeOperations::GetProviders() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_providers;
}

}  // namespace NZEPQEL20
