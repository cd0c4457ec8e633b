// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/Export.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

class ICIMClass;
class ICIMNamespace;

/// A CIM object path: host, namespace, class and keys, each possibly empty.
///
/// It may hold a handle to the namespace object that it was read through; with it the path can
/// lead back to its class. The handle has no part in text or equality.
class DIAGSPLATFORM_EXPORT TCIMReference {
 public:
  TCIMReference() = default;
  /// A path without a class yet. `ns` may be null.
  TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TKeyMap keys);
  TCIMReference(std::string nameSpace, std::string className, TKeyMap keys = {});

  /// Reads `[//host/][namespace:]Class[.key=value,...]`: values in double quotes with `\"` and
  /// `\\`, or bare numbers and TRUE/FALSE; blanks around the commas are passed over.
  /// Errors: TQELException (kInvalidArgument) naming the text and the place.
  static TCIMReference Parse(const std::string& path);

  /// `namespace:Class.Key="value",Key2="value"`: keys ascending, every value between double
  /// quotes, `\` and `"` escaped with `\`. What is empty is left out with its separator.
  std::string GetPath() const;

  /// The class of the object, found through the namespace handle.
  /// Errors: TQELException when there is no handle or no class, or whatever the namespace throws.
  boost::shared_ptr<ICIMClass> GetClass() const;

  bool IsNull() const { return m_className.empty() && m_keys.empty(); }
  const std::string& GetHost() const { return m_host; }
  const std::string& GetNamespaceName() const { return m_nameSpace; }
  const std::string& GetClassName() const { return m_className; }
  const TKeyMap& GetKeys() const { return m_keys; }
  /// The key called `name`, compared without case; null when there is none.
  const TCIMValue* FindKey(const std::string& name) const;

  void SetHost(const std::string& host) { m_host = host; }
  void SetNamespaceName(const std::string& name) { m_nameSpace = name; }
  void SetClassName(const std::string& name) { m_className = name; }
  void SetKey(const std::string& name, const TCIMValue& value);

  const boost::shared_ptr<ICIMNamespace>& GetNamespace() const { return m_ns; }
  /// The same path, led through `ns`.
  TCIMReference Bind(boost::shared_ptr<ICIMNamespace> ns) const;

  /// By path text.
  friend bool operator==(const TCIMReference& left, const TCIMReference& right) {
    return left.GetPath() == right.GetPath();
  }

 private:
  boost::shared_ptr<ICIMNamespace> m_ns;
  std::string m_host;
  std::string m_nameSpace;
  std::string m_className;
  TKeyMap m_keys;
};

}  // namespace NZEPQEL20
