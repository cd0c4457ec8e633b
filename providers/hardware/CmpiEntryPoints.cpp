// SPDX-License-Identifier: Apache-2.0
//
// The function tables that a CMPI broker drives, and the entry points by which it gets them. Every
// function here is called by C: nothing may leave one but a status.
#include <exception>
#include <new>

#include "platform/cmpi/abi/cmpi.h"
#include "providers/hardware/TCmpiMarshal.h"
#include "providers/hardware/TProvider.h"

/// Marks what a broker looks up by name.
#define DIAGSRUNNER_ENTRY_POINT extern "C" __attribute__((visibility("default")))

namespace hardware {
namespace {

using ETable = TProvider::ETable;

constexpr CMPIVersion kVersion = CMPIVersion100;
constexpr const char* kName = "DiagsHardware";

CMPIStatus MakeStatus(int status) {
  return {static_cast<CMPIrc>(status), nullptr};
}

/// Serves one request: gives it the provider and the marshal for the namespace of `path`, and
/// turns whatever it throws into a status.
template <typename TBody>
CMPIStatus Serve(const CMPIObjectPath* path, const TBody& body) noexcept {
  std::shared_ptr<TProvider> provider;
  try {
    provider = TProvider::Get();
    const TCmpiMarshal marshal(provider->GetBroker(), TCmpiMarshal::GetNameSpace(path));
    body(provider->GetModel(), marshal);
    return MakeStatus(CMPI_RC_OK);
  } catch (const TCimError& error) {
    if (!provider) return MakeStatus(error.GetStatus());
    return TCmpiMarshal::MakeStatus(provider->GetBroker(), error.GetStatus(), error.what());
  } catch (const std::exception& error) {
    if (!provider) return MakeStatus(CMPI_RC_ERR_FAILED);
    return TCmpiMarshal::MakeStatus(provider->GetBroker(), CMPI_RC_ERR_FAILED, error.what());
  } catch (...) {
    return MakeStatus(CMPI_RC_ERR_FAILED);
  }
}

CMPIStatus Clean(ETable table, CMPIBoolean terminating) noexcept {
  try {
    return MakeStatus(TProvider::Release(table, terminating != 0) ? CMPI_RC_OK
                                                                  : CMPI_RC_DO_NOT_UNLOAD);
  } catch (...) {
    return MakeStatus(CMPI_RC_ERR_FAILED);
  }
}

void ReturnPath(const CMPIResult* result, const TCmpiMarshal& marshal, const TCimPath& path) {
  result->ft->returnObjectPath(result, marshal.ToPath(path));
}

void ReturnInstance(const CMPIResult* result, const TCmpiMarshal& marshal,
                    const TCimInstance& instance) {
  result->ft->returnInstance(result, marshal.ToInstance(instance));
}

// Instance functions.

CMPIStatus CleanInstances(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                          CMPIBoolean terminating) {
  return Clean(ETable::kInstance, terminating);
}

CMPIStatus EnumerateInstanceNames(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                                  const CMPIResult* result, const CMPIObjectPath* path) {
  return Serve(path, [result, path](TCimModel& model, const TCmpiMarshal& marshal) {
    for (const TCimInstance& instance : model.Enumerate(TCmpiMarshal::FromPath(path).className)) {
      ReturnPath(result, marshal, instance.path);
    }
    result->ft->returnDone(result);
  });
}

// The broker filters properties; all of them are at hand here anyway.
CMPIStatus EnumerateInstances(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                              const CMPIResult* result, const CMPIObjectPath* path,
                              const char** /*properties*/) {
  return Serve(path, [result, path](TCimModel& model, const TCmpiMarshal& marshal) {
    for (const TCimInstance& instance : model.Enumerate(TCmpiMarshal::FromPath(path).className)) {
      ReturnInstance(result, marshal, instance);
    }
    result->ft->returnDone(result);
  });
}

CMPIStatus GetInstance(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                       const CMPIResult* result, const CMPIObjectPath* path,
                       const char** /*properties*/) {
  return Serve(path, [result, path](TCimModel& model, const TCmpiMarshal& marshal) {
    ReturnInstance(result, marshal, model.Get(TCmpiMarshal::FromPath(path)));
    result->ft->returnDone(result);
  });
}

CMPIStatus CreateInstance(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                          const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/,
                          const CMPIInstance* /*instance*/) {
  return MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus ModifyInstance(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                          const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/,
                          const CMPIInstance* /*instance*/, const char** /*properties*/) {
  return MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DeleteInstance(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                          const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/) {
  return MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus ExecQuery(CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
                     const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/,
                     const char* /*query*/, const char* /*language*/) {
  return MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED);
}

// Association functions.

/// The filters of an association request; each may be null.
struct TFilter {
  const char* associationClass;
  const char* resultClass;
  const char* role;
  const char* resultRole;
};

bool IsA(const TCmpiMarshal& marshal, const CMPIBroker* broker, const TCimPath& path,
         const char* className) {
  if (className == nullptr || *className == '\0') return true;
  return broker->eft->classPathIsA(broker, marshal.ToPath(path), className, nullptr) != 0;
}

bool IsRole(const TCimRole& role, const char* wanted) {
  return wanted == nullptr || *wanted == '\0' || ::strcasecmp(role.name.c_str(), wanted) == 0;
}

/// Hands every association instance of `path` that passes the filter to `take`, together with the
/// far end.
template <typename TTake>
void ForEachReference(TCimModel& model, const TCmpiMarshal& marshal, const CMPIObjectPath* path,
                      const TFilter& filter, const TTake& take) {
  const CMPIBroker* const broker = TProvider::Get()->GetBroker();
  const TCimPath object = TCmpiMarshal::FromPath(path);
  for (const TCimInstance& association : model.FindReferences(object)) {
    const auto& roles = association.path.roles;
    const bool isFirst = IsSameObject(object, roles[0].path);
    const TCimRole& near = roles[isFirst ? 0 : 1];
    const TCimRole& far = roles[isFirst ? 1 : 0];
    if (IsRole(near, filter.role) && IsRole(far, filter.resultRole) &&
        IsA(marshal, broker, association.path, filter.associationClass) &&
        IsA(marshal, broker, far.path, filter.resultClass)) {
      take(association, far.path);
    }
  }
}

CMPIStatus CleanAssociations(CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
                             CMPIBoolean terminating) {
  return Clean(ETable::kAssociation, terminating);
}

CMPIStatus Associators(CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
                       const CMPIResult* result, const CMPIObjectPath* path,
                       const char* associationClass, const char* resultClass, const char* role,
                       const char* resultRole, const char** /*properties*/) {
  const TFilter filter{associationClass, resultClass, role, resultRole};
  return Serve(path, [result, path, &filter](TCimModel& model, const TCmpiMarshal& marshal) {
    ForEachReference(model, marshal, path, filter,
                     [&model, &marshal, result](const TCimInstance&, const TCimPath& far) {
                       ReturnInstance(result, marshal, model.Get(far));
                     });
    result->ft->returnDone(result);
  });
}

CMPIStatus AssociatorNames(CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
                           const CMPIResult* result, const CMPIObjectPath* path,
                           const char* associationClass, const char* resultClass, const char* role,
                           const char* resultRole) {
  const TFilter filter{associationClass, resultClass, role, resultRole};
  return Serve(path, [result, path, &filter](TCimModel& model, const TCmpiMarshal& marshal) {
    ForEachReference(model, marshal, path, filter,
                     [&marshal, result](const TCimInstance&, const TCimPath& far) {
                       ReturnPath(result, marshal, far);
                     });
    result->ft->returnDone(result);
  });
}

CMPIStatus References(CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
                      const CMPIResult* result, const CMPIObjectPath* path, const char* resultClass,
                      const char* role, const char** /*properties*/) {
  const TFilter filter{resultClass, nullptr, role, nullptr};
  return Serve(path, [result, path, &filter](TCimModel& model, const TCmpiMarshal& marshal) {
    ForEachReference(model, marshal, path, filter,
                     [&marshal, result](const TCimInstance& association, const TCimPath&) {
                       ReturnInstance(result, marshal, association);
                     });
    result->ft->returnDone(result);
  });
}

CMPIStatus ReferenceNames(CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
                          const CMPIResult* result, const CMPIObjectPath* path,
                          const char* resultClass, const char* role) {
  const TFilter filter{resultClass, nullptr, role, nullptr};
  return Serve(path, [result, path, &filter](TCimModel& model, const TCmpiMarshal& marshal) {
    ForEachReference(model, marshal, path, filter,
                     [&marshal, result](const TCimInstance& association, const TCimPath&) {
                       ReturnPath(result, marshal, association.path);
                     });
    result->ft->returnDone(result);
  });
}

// Method functions.

CMPIStatus CleanMethods(CMPIMethodMI* /*mi*/, const CMPIContext* /*context*/,
                        CMPIBoolean terminating) {
  return Clean(ETable::kMethod, terminating);
}

CMPIStatus InvokeMethod(CMPIMethodMI* /*mi*/, const CMPIContext* /*context*/,
                        const CMPIResult* result, const CMPIObjectPath* path, const char* method,
                        const CMPIArgs* in, CMPIArgs* out) {
  return Serve(path, [=](TCimModel& model, const TCmpiMarshal& marshal) {
    TCimArguments outArguments;
    CMPIValue value{};
    value.uint32 = model.Invoke(TCmpiMarshal::FromPath(path), method != nullptr ? method : "",
                                TCmpiMarshal::FromArguments(in), outArguments);
    marshal.AddArguments(outArguments, out);
    result->ft->returnData(result, &value, CMPI_uint32);
    result->ft->returnDone(result);
  });
}

const CMPIInstanceMIFT kInstanceTable = {
    kVersion,           kVersion,    kName,          CleanInstances, EnumerateInstanceNames,
    EnumerateInstances, GetInstance, CreateInstance, ModifyInstance, DeleteInstance,
    ExecQuery,          nullptr};
const CMPIAssociationMIFT kAssociationTable = {
    kVersion,        kVersion,   kName,          CleanAssociations, Associators,
    AssociatorNames, References, ReferenceNames, nullptr,           nullptr};
const CMPIMethodMIFT kMethodTable = {kVersion, kVersion, kName, CleanMethods, InvokeMethod};

CMPIInstanceMI instanceMI = {nullptr, &kInstanceTable};
CMPIAssociationMI associationMI = {nullptr, &kAssociationTable};
CMPIMethodMI methodMI = {nullptr, &kMethodTable};

/// Hands `mi` out, or null with the reason in `status`, which may be null.
template <typename TTable>
TTable* Create(ETable table, TTable* mi, const CMPIBroker* broker, CMPIStatus* status) noexcept {
  CMPIStatus made = MakeStatus(CMPI_RC_OK);
  try {
    TProvider::Acquire(table, broker);
  } catch (const std::exception& error) {
    made = TCmpiMarshal::MakeStatus(broker, CMPI_RC_ERR_FAILED, error.what());
  } catch (...) {
    made = MakeStatus(CMPI_RC_ERR_FAILED);
  }
  if (status != nullptr) *status = made;
  return made.rc == CMPI_RC_OK ? mi : nullptr;
}

}  // namespace
}  // namespace hardware

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// Gives the broker the instance functions.
DIAGSRUNNER_ENTRY_POINT CMPIInstanceMI* DiagsHardware_Create_InstanceMI(
    const CMPIBroker* broker, const CMPIContext* /*context*/, CMPIStatus* status) {
  return hardware::Create(hardware::ETable::kInstance, &hardware::instanceMI, broker, status);
}

/// Gives the broker the association functions.
DIAGSRUNNER_ENTRY_POINT CMPIAssociationMI* DiagsHardware_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext* /*context*/, CMPIStatus* status) {
  return hardware::Create(hardware::ETable::kAssociation, &hardware::associationMI, broker, status);
}

/// Gives the broker the method functions.
DIAGSRUNNER_ENTRY_POINT CMPIMethodMI* DiagsHardware_Create_MethodMI(const CMPIBroker* broker,
                                                                    const CMPIContext* /*context*/,
                                                                    CMPIStatus* status) {
  return hardware::Create(hardware::ETable::kMethod, &hardware::methodMI, broker, status);
}

// NOLINTEND(readability-identifier-naming)
