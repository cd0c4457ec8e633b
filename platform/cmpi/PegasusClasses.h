// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NZEPQEL20 {

/// The classes that OpenPegasus registers providers with, as far as registrations use them.
/// Vendors ship instances of them; the declarations are the server's.
inline constexpr char kPegasusClasses[] = R"(
class PG_ProviderModule {
  [Key] string Name; string Vendor; string Version; string InterfaceType; string InterfaceVersion;
  string Location; uint16 OperationalStatus[]; string OtherStatusDescription; uint16 UserContext;
  string DesignatedUserContext; string ModuleGroupName; uint16 Bitness; string Caption;
  string Description; string ElementName; string StatusDescriptions[]; uint16 ShareAS;
  string BlockedBy;
};
class PG_Provider {
  [Key] string ProviderModuleName; [Key] string Name; string Caption; string Description;
  string ElementName; uint16 OperationalStatus[]; string StatusDescriptions[];
};
class PG_ProviderCapabilities {
  [Key] string ProviderModuleName; [Key] string ProviderName; [Key] string CapabilityID;
  string ClassName; string Namespaces[]; uint16 ProviderType[]; string SupportedProperties[];
  string SupportedMethods[]; uint16 IndicationTypes[]; uint64 SequenceIdentifierLifetime;
  string Caption; string Description; string ElementName;
};
)";

}  // namespace NZEPQEL20
