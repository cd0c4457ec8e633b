// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "providers/hardware/CimData.h"
#include "providers/hardware/THardware.h"

namespace hardware {

/// Shows devices, tests, jobs and records as instances of the DRH_ classes, and takes their
/// methods.
///
/// Errors: TCimError in every operation.
/// Threads: any.
class TCimModel {
 public:
  /// `systemName` is the machine's name in keys.
  TCimModel(THardware& hardware, std::string systemName);

  /// All instances of the class itself. For devices, tests and their association the machine is
  /// looked at anew.
  std::vector<TCimInstance> Enumerate(const std::string& className);

  /// The instance that `path` names; its last key has to be given, and none may differ.
  TCimInstance Get(const TCimPath& path);

  /// The association instances that have `object` at one of their ends.
  std::vector<TCimInstance> FindReferences(const TCimPath& object);

  /// Invokes RunDiagnostic or RunDiagnosticService of a test, or RequestStateChange of a job;
  /// returns what the method returns. `out` receives "Job" when one was made.
  std::uint32_t Invoke(const TCimPath& target, const std::string& method, const TCimArguments& in,
                       TCimArguments& out);

 private:
  std::vector<TCimInstance> List(const std::string& className);

  TCimPath MakeSystemPath(const char* className, const char* key, const std::string& value) const;
  TCimPath MakePath(const TDevice& device) const;
  TCimPath MakePath(const TService& service) const;
  TCimInstance Show(const TDevice& device) const;
  TCimInstance Show(const TService& service) const;
  TCimInstance Show(const THardware::TOffer& offer) const;
  static TCimInstance Show(const TJobView& job);
  static TCimInstance Show(const TRecord& record);
  static TCimInstance Show(const THardware::TUnoffered& unoffered);
  TCimInstance ShowAssociation(const TRecord& record) const;

  std::uint32_t RunTest(const TCimPath& target, const TCimArguments& in, bool isService,
                        TCimArguments& out);
  std::shared_ptr<const THardware::TOffer> FindOffer(const TCimPath& target,
                                                     const TCimArguments& in);
  std::uint32_t RequestStateChange(const TCimPath& target, const TCimArguments& in);

  THardware& m_hardware;
  std::string m_systemName;
};

/// Whether `path` names the object of `candidate`: same class, the last of its keys given, and no
/// key that differs.
bool IsSameObject(const TCimPath& path, const TCimPath& candidate);

}  // namespace hardware
