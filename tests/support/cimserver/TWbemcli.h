// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"

namespace cimserver {

/// One class or object as wbemcli prints it.
struct TWbemcliObject {
  TCIMReference path;  ///< Namespace, class and keys.
  /// By name. Texts without their quotes, arrays joined with ",", references as
  /// TCIMReference::GetPath() without host, NULL empty: as TCIMValue::ToString() has them. Of a
  /// class, in the place of the value, what wbemcli marks: "#" a key, "&" a reference, "[]" an
  /// array.
  std::map<std::string, std::string> properties;
};

/// What one run of wbemcli came to.
struct TWbemcliAnswer {
  int exitStatus = -1;                  ///< 0, or 16 for any failure.
  unsigned int cimStatus = 0;           ///< The number of a CIM error; 0 when there was none.
  std::string error;                    ///< The words of the failure, after number and name.
  std::vector<TWbemcliObject> objects;  ///< In the server's order.
  std::string returnValue;              ///< Of a method.
  std::map<std::string, std::string> outParameters;  ///< Of a method; texts as above.
};

/// An independent client, to see servers with other eyes than our own: Debian's wbemcli, run once
/// for each operation.
class TWbemcli {
 public:
  using TArguments = std::vector<std::string>;

  /// Whether the program is installed.
  static bool IsInstalled();

  /// `url` is `http://[user:password@]host:port` or the same by https. `options` go to wbemcli as
  /// they are, "-cacert" and the like.
  TWbemcli(std::string url, std::string nameSpace, TArguments options = {});

  TWbemcliAnswer GetClass(const std::string& className) const;
  TWbemcliAnswer EnumerateClasses(const std::string& className) const;
  TWbemcliAnswer EnumerateClassNames(const std::string& className) const;
  TWbemcliAnswer EnumerateInstances(const std::string& className) const;
  TWbemcliAnswer EnumerateInstanceNames(const std::string& className) const;
  TWbemcliAnswer GetInstance(const TCIMReference& path) const;
  /// `properties` as wbemcli takes them: `Name="text",Number=3`. A text with a comma or a blank in
  /// it does not get through.
  TWbemcliAnswer CreateInstance(const TCIMReference& path, const std::string& properties) const;
  TWbemcliAnswer ModifyInstance(const TCIMReference& path, const std::string& properties) const;
  TWbemcliAnswer DeleteInstance(const TCIMReference& path) const;
  TWbemcliAnswer Associators(const TCIMReference& path) const;
  TWbemcliAnswer AssociatorNames(const TCIMReference& path) const;
  TWbemcliAnswer References(const TCIMReference& path) const;
  TWbemcliAnswer ReferenceNames(const TCIMReference& path) const;
  /// `parameters` as wbemcli takes them: `Name="text",Other=host/namespace:Class.Key="value"`.
  TWbemcliAnswer InvokeMethod(const TCIMReference& path, const std::string& method,
                              const std::string& parameters) const;

 private:
  TWbemcliAnswer Run(const std::string& operation, const std::string& object,
                     const TArguments& rest = {}) const;

  std::string m_url;
  std::string m_nameSpace;
  TArguments m_options;
};

/// What a run printed. `nameSpace` is the one of the objects in it.
/// Errors: std::runtime_error naming a line that it does not understand.
TWbemcliAnswer ReadWbemcli(int exitStatus, const std::string& out, const std::string& err,
                           const std::string& nameSpace);

/// The same of a run that called a method.
TWbemcliAnswer ReadWbemcliCall(int exitStatus, const std::string& out, const std::string& err,
                               const std::string& nameSpace);

}  // namespace cimserver
