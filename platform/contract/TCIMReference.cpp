// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMReference.h"

#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

void AppendQuoted(const std::string& text, std::string& path) {
  path += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') path += '\\';
    path += c;
  }
  path += '"';
}

}  // namespace

TCIMReference::TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TKeyMap keys)
    : m_ns(std::move(ns)), m_keys(std::move(keys)) {}

TCIMReference::TCIMReference(std::string nameSpace, std::string className, TKeyMap keys)
    : m_nameSpace(std::move(nameSpace)),
      m_className(std::move(className)),
      m_keys(std::move(keys)) {}

std::string TCIMReference::GetPath() const {
  std::string path;
  if (!m_host.empty()) path += "//" + m_host + "/";
  if (!m_nameSpace.empty()) path += m_nameSpace + ":";
  path += m_className;
  char separator = '.';
  for (const auto& [name, value] : m_keys) {
    path += separator;
    path += name + "=";
    AppendQuoted(value.ToString(10), path);
    separator = ',';
  }
  return path;
}

boost::shared_ptr<ICIMClass> TCIMReference::GetClass() const {
  const auto refuse = [this](const char* reason) {
    return TQELException(TQELStatusCode::kNotFound,
                         "class of object path '" + GetPath() + "': " + reason);
  };
  if (m_className.empty()) throw refuse("the path names no class");
  if (!m_ns) throw refuse("the path is bound to no namespace");
  boost::shared_ptr<ICIMClass> found = m_ns->FindClass(m_className, {});
  if (!found) throw refuse("the namespace does not know it");
  return found;
}

const TCIMValue* TCIMReference::FindKey(const std::string& name) const {
  for (const auto& [key, value] : m_keys) {
    if (IsSameName(key, name)) return &value;
  }
  return nullptr;
}

void TCIMReference::SetKey(const std::string& name, const TCIMValue& value) {
  for (auto& [key, known] : m_keys) {
    if (!IsSameName(key, name)) continue;
    known = value;
    return;
  }
  m_keys.emplace(name, value);
}

TCIMReference TCIMReference::Bind(boost::shared_ptr<ICIMNamespace> ns) const {
  TCIMReference bound = *this;
  bound.m_ns = std::move(ns);
  return bound;
}

}  // namespace NZEPQEL20
