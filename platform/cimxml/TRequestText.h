// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cimxml {

/// The XML document of one request (DSP0201): an operation on a namespace, or a method call.
///
/// Parameters appear in the order of the calls. A reply is to carry the same message id and name.
/// Errors: TQELException (kInvalidArgument) for texts that XML cannot hold, naming the parameter.
class TRequestText {
 public:
  /// An operation of the server itself, for example "GetInstance".
  static TRequestText Operation(std::string_view name, const std::string& nameSpace,
                                std::uint64_t id);
  /// A method of the class or, with keys, of the instance that `path` names.
  static TRequestText Method(std::string_view name, const TCIMReference& path, std::uint64_t id);

  /// A parameter whose value is a word, a number or TRUE/FALSE.
  void AddText(std::string_view parameter, std::string_view value);
  void AddFlag(std::string_view parameter, bool value);
  /// Nothing is sent for an empty name: the server's default holds.
  void AddClassName(std::string_view parameter, const std::string& className);
  /// Class and keys without namespace and host, as operations want them.
  void AddInstanceName(std::string_view parameter, const TCIMReference& path);
  /// The properties of `instance`, without its path ...
  void AddInstance(std::string_view parameter, const TCIMInstanceData& instance);
  /// ... and with it.
  void AddNamedInstance(std::string_view parameter, const TCIMInstanceData& instance);
  /// An in-parameter of a method; one that is NULL is left out.
  void AddArgument(const std::string& name, const TCIMValue& value);

  /// The whole document; to be called once, at the end.
  std::string Finish();

 private:
  TRequestText() = default;
  void Open(std::string_view parameter);
  void Close();

  std::string m_text;
  bool m_isMethod = false;
};

/// The object of a method call as the CIMObject header names it: `namespace:Class.Key="text",N=3`.
std::string GetObjectText(const TCIMReference& path);

}  // namespace NZEPQEL20::cimxml
