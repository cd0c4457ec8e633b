// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/IBrokerHost.h"
#include "platform/cmpi/TInstanceContent.h"
#include "platform/cmpi/query/TCondition.h"

namespace NZEPQEL20::cmpi {

/// An instance that a query is tested on; what it refers to must outlive it.
class TQueriedInstance : public IQueryObject {
 public:
  /// Without a host (null) only a class itself is of its kind.
  TQueriedInstance(const std::string& className, const TNamedValues& properties,
                   const IBrokerHost* host)
      : m_className(className), m_properties(properties), m_host(host) {}

  std::optional<TCIMValue> Find(const std::string& name) const override;
  std::string GetClassName() const override { return m_className; }
  bool IsA(const std::string& className, const std::string& superclass) const override;

 private:
  const std::string& m_className;
  const TNamedValues& m_properties;
  const IBrokerHost* m_host;
};

/// What a provider's own function tells about something; its class is not known.
class TQueriedAccessor : public IQueryObject {
 public:
  /// Errors: TBrokerFault (CMPI_RC_ERR_INVALID_PARAMETER) for a NULL function.
  TQueriedAccessor(CMPIAccessor* accessor, void* user, const IBrokerHost* host);

  std::optional<TCIMValue> Find(const std::string& name) const override;
  std::string GetClassName() const override { return {}; }
  bool IsA(const std::string& className, const std::string& superclass) const override;

 private:
  CMPIAccessor* m_accessor;
  void* m_user;
  const IBrokerHost* m_host;
};

}  // namespace NZEPQEL20::cmpi
