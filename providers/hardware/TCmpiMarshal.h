// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/abi/cmpi.h"
#include "providers/hardware/CimData.h"

namespace hardware {

/// Turns this provider's plain records into a broker's objects and back. The objects belong to the
/// broker and live until the provider's function returns.
///
/// Errors: TCimError when the broker refuses to make or to fill an object.
class TCmpiMarshal {
 public:
  /// What is made belongs to `nameSpace`.
  TCmpiMarshal(const CMPIBroker* broker, std::string nameSpace)
      : m_broker(broker), m_nameSpace(std::move(nameSpace)) {}

  CMPIObjectPath* ToPath(const TCimPath& path) const;
  CMPIInstance* ToInstance(const TCimInstance& instance) const;
  void AddArguments(const TCimArguments& arguments, CMPIArgs* out) const;

  /// Returns a status with this message; one without it when the broker has no memory for it.
  static CMPIStatus MakeStatus(const CMPIBroker* broker, int status, const char* message) noexcept;

  static TCimPath FromPath(const CMPIObjectPath* path);
  static TCimArguments FromArguments(const CMPIArgs* arguments);
  static std::string GetNameSpace(const CMPIObjectPath* path);

 private:
  void SetProperty(CMPIInstance* instance, const std::string& name, const TCimValue& value) const;
  CMPIArray* ToArray(const std::vector<std::uint16_t>& numbers) const;

  const CMPIBroker* m_broker;
  std::string m_nameSpace;
};

}  // namespace hardware
