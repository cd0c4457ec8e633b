// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"
#include "tests/support/cimserver/TCimCall.h"
#include "tests/support/cimserver/TXmlWriter.h"

namespace cimserver {

/// The parameters of one intrinsic operation, by name without case.
/// Errors of all: TNotValid for a parameter of the wrong kind; TQELException (CIM status 4) for one
/// that is needed and was left out.
class TOperands {
 public:
  /// `call` must outlive this.
  explicit TOperands(const TCimCall& call) : m_call(call) {}

  const std::string& GetNameSpace() const { return m_call.nameSpace; }
  /// The element in the parameter; null when it was left out or is NULL.
  const TXmlElement* Find(const std::string& name) const;
  bool GetFlag(const std::string& name, bool otherwise) const;
  std::optional<std::uint64_t> FindNumber(const std::string& name) const;
  /// Of a VALUE or CLASSNAME; empty when it was left out.
  std::string GetText(const std::string& name) const;
  std::string RequireClassName(const std::string& name) const;
  /// An instance name.
  TCIMReference RequirePath(const std::string& name) const;
  const TXmlElement& Require(const std::string& name) const;
  /// IncludeClassOrigin and PropertyList, which many operations have.
  TContentOptions GetContentOptions() const;
  std::optional<std::vector<std::string>> FindPropertyList() const;

 private:
  const TCimCall& m_call;
};

}  // namespace cimserver
