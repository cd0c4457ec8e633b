// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMReference.h"

#include <algorithm>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

namespace {

void AppendQuoted(std::string& out, const std::string& text) {
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
    }
    out += c;
  }
  out += '"';
}

}  // namespace

TCIMReference::TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TKeyMap keys)
    : m_ns(std::move(ns)), m_keys(std::move(keys)) {}

TCIMReference::TCIMReference(std::string nameSpace, std::string className, TKeyMap keys)
    : m_nameSpace(std::move(nameSpace)),
      m_className(std::move(className)),
      m_keys(std::move(keys)) {}

std::string TCIMReference::GetPath() const {
  std::string path = m_nameSpace;
  if (!path.empty()) {
    path += ':';
  }
  path += m_className;
  char separator = m_className.empty() ? '\0' : '.';
  for (const auto& [name, value] : m_keys) {
    if (separator != '\0') {
      path += separator;
    }
    path += name;
    path += '=';
    AppendQuoted(path, value.ToString(10));
    separator = ',';
  }
  return path;
}

boost::shared_ptr<ICIMClass> TCIMReference::GetClass() const {
  if (m_className.empty()) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        "GetClass: the path \"" + GetPath() + "\" names no class");
  }
  if (!m_ns) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        "GetClass: the path \"" + GetPath() + "\" belongs to no namespace object");
  }
  boost::shared_ptr<ICIMClass> found = m_ns->FindClass(m_className, {});
  if (!found) {
    throw TQELException(TQELStatusCode::kNotFound,
                        "GetClass: the class of \"" + GetPath() + "\" was not found");
  }
  return found;
}

const TCIMValue* TCIMReference::FindKey(const std::string& name) const {
  const auto exact = m_keys.find(name);
  if (exact != m_keys.end()) {
    return &exact->second;
  }
  const auto found = std::find_if(m_keys.begin(), m_keys.end(),
                                  [&name](const auto& key) { return IsSameName(key.first, name); });
  return found == m_keys.end() ? nullptr : &found->second;
}

void TCIMReference::SetKey(const std::string& name, const TCIMValue& value) {
  const auto found = std::find_if(m_keys.begin(), m_keys.end(),
                                  [&name](const auto& key) { return IsSameName(key.first, name); });
  if (found != m_keys.end()) {
    found->second = value;
  } else {
    m_keys.emplace(name, value);
  }
}

TCIMReference TCIMReference::Bind(boost::shared_ptr<ICIMNamespace> ns) const {
  TCIMReference bound(*this);
  bound.m_ns = std::move(ns);
  return bound;
}

}  // namespace NZEPQEL20
