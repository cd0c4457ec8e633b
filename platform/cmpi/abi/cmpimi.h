// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Function tables that a provider library offers, and how a broker gets them.
///
/// A library exports `CMPI<T>MI* <miName>_Create_<T>MI(const CMPIBroker*, const CMPIContext*,
/// CMPIStatus*)` for one provider name, or `_Generic_Create_<T>MI(const CMPIBroker*,
/// const CMPIContext*, const char* miName, CMPIStatus*)` for any, T being Instance, Association,
/// Method, Property or Indication. `ftVersion` is the version the provider was built for: the
/// members of later versions are not there, and any slot may be NULL.
#include "platform/cmpi/abi/cmpibroker.h"

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

typedef struct CMPIInstanceMI CMPIInstanceMI;
typedef struct CMPIAssociationMI CMPIAssociationMI;
typedef struct CMPIMethodMI CMPIMethodMI;
typedef struct CMPIPropertyMI CMPIPropertyMI;
typedef struct CMPIIndicationMI CMPIIndicationMI;

/// Instance functions. Classes come as a path without keys.
typedef struct CMPIInstanceMIFT {
  CMPIVersion ftVersion;
  int miVersion;
  const char* miName;
  /// Called once; with `terminating` the provider is gone whatever it answers.
  CMPIStatus (*cleanup)(CMPIInstanceMI* mi, const CMPIContext* c, CMPIBoolean terminating);
  CMPIStatus (*enumerateInstanceNames)(CMPIInstanceMI* mi, const CMPIContext* c,
                                       const CMPIResult* r, const CMPIObjectPath* cls);
  CMPIStatus (*enumerateInstances)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                                   const CMPIObjectPath* cls, const char** props);
  CMPIStatus (*getInstance)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                            const CMPIObjectPath* path, const char** props);
  CMPIStatus (*createInstance)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                               const CMPIObjectPath* cls, const CMPIInstance* inst);
  CMPIStatus (*modifyInstance)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                               const CMPIObjectPath* path, const CMPIInstance* inst,
                               const char** props);
  CMPIStatus (*deleteInstance)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                               const CMPIObjectPath* path);
  CMPIStatus (*execQuery)(CMPIInstanceMI* mi, const CMPIContext* c, const CMPIResult* r,
                          const CMPIObjectPath* cls, const char* query, const char* lang);
  // Since 2.1.
  /// The last argument is described in two ways; 0 suits both.
  CMPIStatus (*enumerateInstancesFiltered)(CMPIInstanceMI* mi, const CMPIContext* c,
                                           const CMPIResult* r, const CMPIObjectPath* cls,
                                           const char** props, const char* qlang, const char* query,
                                           CMPIStatus* reserved);
} CMPIInstanceMIFT;

/// Instance functions of one provider, kept by the provider; `hdl` is its own and may be NULL.
struct CMPIInstanceMI {
  const void* hdl;
  const CMPIInstanceMIFT* ft;
};

/// Association functions; a filter that is not set is NULL.
typedef struct CMPIAssociationMIFT {
  CMPIVersion ftVersion;
  int miVersion;
  const char* miName;
  CMPIStatus (*cleanup)(CMPIAssociationMI* mi, const CMPIContext* c, CMPIBoolean terminating);
  CMPIStatus (*associators)(CMPIAssociationMI* mi, const CMPIContext* c, const CMPIResult* r,
                            const CMPIObjectPath* path, const char* assocCls, const char* resultCls,
                            const char* role, const char* resultRole, const char** props);
  CMPIStatus (*associatorNames)(CMPIAssociationMI* mi, const CMPIContext* c, const CMPIResult* r,
                                const CMPIObjectPath* path, const char* assocCls,
                                const char* resultCls, const char* role, const char* resultRole);
  CMPIStatus (*references)(CMPIAssociationMI* mi, const CMPIContext* c, const CMPIResult* r,
                           const CMPIObjectPath* path, const char* resultCls, const char* role,
                           const char** props);
  CMPIStatus (*referenceNames)(CMPIAssociationMI* mi, const CMPIContext* c, const CMPIResult* r,
                               const CMPIObjectPath* path, const char* resultCls, const char* role);
  // Since 2.1.
  CMPIStatus (*associatorsFiltered)(CMPIAssociationMI* mi, const CMPIContext* c,
                                    const CMPIResult* r, const CMPIObjectPath* path,
                                    const char* assocCls, const char* resultCls, const char* role,
                                    const char* resultRole, const char** props, const char* qlang,
                                    const char* query, CMPIBoolean contOnErr);
  CMPIStatus (*referencesFiltered)(CMPIAssociationMI* mi, const CMPIContext* c, const CMPIResult* r,
                                   const CMPIObjectPath* path, const char* resultCls,
                                   const char* role, const char** props, const char* qlang,
                                   const char* query, CMPIBoolean contOnErr);
} CMPIAssociationMIFT;

/// Association functions of one provider, kept by the provider; `hdl` is its own and may be NULL.
struct CMPIAssociationMI {
  const void* hdl;
  const CMPIAssociationMIFT* ft;
};

/// Method functions.
typedef struct CMPIMethodMIFT {
  CMPIVersion ftVersion;
  int miVersion;
  const char* miName;
  CMPIStatus (*cleanup)(CMPIMethodMI* mi, const CMPIContext* c, CMPIBoolean terminating);
  /// `in` and `out` are never NULL; `out` starts empty.
  CMPIStatus (*invokeMethod)(CMPIMethodMI* mi, const CMPIContext* c, const CMPIResult* r,
                             const CMPIObjectPath* target, const char* meth, const CMPIArgs* in,
                             CMPIArgs* out);
} CMPIMethodMIFT;

/// Method functions of one provider, kept by the provider; `hdl` is its own and may be NULL.
struct CMPIMethodMI {
  const void* hdl;
  const CMPIMethodMIFT* ft;
};

/// Property functions; nothing has used them since 2.0 but the table.
typedef struct CMPIPropertyMIFT {
  CMPIVersion ftVersion;
  int miVersion;
  const char* miName;
  CMPIStatus (*cleanup)(CMPIPropertyMI* mi, const CMPIContext* c, CMPIBoolean terminating);
  CMPIStatus (*setProperty)(CMPIPropertyMI* mi, const CMPIContext* c, const CMPIResult* r,
                            const CMPIObjectPath* path, const char* prop, const CMPIData val);
  CMPIStatus (*getProperty)(CMPIPropertyMI* mi, const CMPIContext* c, const CMPIResult* r,
                            const CMPIObjectPath* path, const char* prop);
  // Since 2.0.
  CMPIStatus (*setPropertyWithOrigin)(CMPIPropertyMI* mi, const CMPIContext* c, const CMPIResult* r,
                                      CMPIObjectPath* path, const char* prop, const CMPIData val,
                                      const char* originCls);
} CMPIPropertyMIFT;

/// Property functions of one provider, kept by the provider; `hdl` is its own and may be NULL.
struct CMPIPropertyMI {
  const void* hdl;
  const CMPIPropertyMIFT* ft;
};

/// Indication functions. mustPoll() has another argument list in older headers: never call it.
/// enableIndications() and disableIndications() returned nothing in old headers: ignore the status.
typedef struct CMPIIndicationMIFT {
  CMPIVersion ftVersion;
  int miVersion;
  const char* miName;
  CMPIStatus (*cleanup)(CMPIIndicationMI* mi, const CMPIContext* c, CMPIBoolean terminating);
  CMPIStatus (*authorizeFilter)(CMPIIndicationMI* mi, const CMPIContext* c,
                                const CMPISelectExp* filter, const char* cls,
                                const CMPIObjectPath* clsPath, const char* owner);
  CMPIStatus (*mustPoll)(CMPIIndicationMI* mi, const CMPIContext* c, const CMPIResult* r,
                         const CMPISelectExp* filter, const char* cls,
                         const CMPIObjectPath* clsPath);
  CMPIStatus (*activateFilter)(CMPIIndicationMI* mi, const CMPIContext* c,
                               const CMPISelectExp* filter, const char* cls,
                               const CMPIObjectPath* clsPath, CMPIBoolean first);
  CMPIStatus (*deActivateFilter)(CMPIIndicationMI* mi, const CMPIContext* c,
                                 const CMPISelectExp* filter, const char* cls,
                                 const CMPIObjectPath* clsPath, CMPIBoolean last);
  CMPIStatus (*enableIndications)(CMPIIndicationMI* mi, const CMPIContext* c);
  CMPIStatus (*disableIndications)(CMPIIndicationMI* mi, const CMPIContext* c);
  // Since 2.1.
  CMPIStatus (*authorizeFilterCollection)(CMPIIndicationMI* mi, const CMPIContext* c,
                                          const CMPIInstance* coll);
  CMPIStatus (*activateFilterCollection)(CMPIIndicationMI* mi, const CMPIContext* c,
                                         const CMPIInstance* coll, CMPIBoolean first);
  CMPIStatus (*deActivateFilterCollection)(CMPIIndicationMI* mi, const CMPIContext* c,
                                           const CMPIInstance* coll, CMPIBoolean last);
} CMPIIndicationMIFT;

/// Indication functions of one provider, kept by the provider; `hdl` is its own and may be NULL.
struct CMPIIndicationMI {
  const void* hdl;
  const CMPIIndicationMIFT* ft;
};

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif
