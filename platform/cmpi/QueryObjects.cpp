// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/QueryObjects.h"

#include "platform/cmpi/Border.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

std::optional<TCIMValue> FindIn(const TNamedValues& properties, const std::string& name) {
  const std::size_t dot = name.find('.');
  const TCIMPropertyData* property = FindNamed(properties, name.substr(0, dot));
  if (property == nullptr) return std::nullopt;
  if (dot == std::string::npos) return property->value;
  const TCIMValue& outer = property->value;
  if (outer.GetType() != ECIMType::kInstance || outer.IsArray() || outer.IsNull()) {
    return std::nullopt;
  }
  return FindIn(outer.ToInstance()->properties, name.substr(dot + 1));
}

bool IsKindOf(const IBrokerHost* host, const std::string& className,
              const std::string& superclass) {
  return host == nullptr ? IsSameName(className, superclass) : host->IsA(className, superclass);
}

}  // namespace

std::optional<TCIMValue> TQueriedInstance::Find(const std::string& name) const {
  return FindIn(m_properties, name);
}

bool TQueriedInstance::IsA(const std::string& className, const std::string& superclass) const {
  return IsKindOf(m_host, className, superclass);
}

TQueriedAccessor::TQueriedAccessor(CMPIAccessor* accessor, void* user, const IBrokerHost* host)
    : m_accessor(accessor), m_user(user), m_host(host) {
  if (accessor == nullptr) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "no function given");
}

std::optional<TCIMValue> TQueriedAccessor::Find(const std::string& name) const {
  const CMPIData data = m_accessor(name.c_str(), m_user);
  if ((data.state & CMPI_notFound) != 0) return std::nullopt;
  return FromCMPI(data);
}

bool TQueriedAccessor::IsA(const std::string& className, const std::string& superclass) const {
  return IsKindOf(m_host, className, superclass);
}

}  // namespace NZEPQEL20::cmpi
