// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The broker as providers see it, and its four function tables (CMPI 1.0 to 2.1).
///
/// Nothing may be derived from the address of the broker that a function is given: wrappers pass
/// copies of it.
#include <stddef.h>

#include "platform/cmpi/abi/cmpift.h"

#ifdef __cplusplus
extern "C" {
#endif

struct timespec;

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// The broker's services by request: upcalls and threads. `props` NULL means all properties; filter
/// texts may be NULL. A failed upcall gives NULL, a successful one without results an empty
/// enumeration.
typedef struct CMPIBrokerFT {
  unsigned int brokerCapabilities;
  CMPIVersion brokerVersion;
  const char* brokerName;
  /// A context for a new thread, to be asked for on a thread that has one.
  CMPIContext* (*prepareAttachThread)(const CMPIBroker* mb, const CMPIContext* cur);
  CMPIStatus (*attachThread)(const CMPIBroker* mb, const CMPIContext* prepared);
  /// Ends what attachThread() began and frees `prepared`.
  CMPIStatus (*detachThread)(const CMPIBroker* mb, const CMPIContext* prepared);
  CMPIStatus (*deliverIndication)(const CMPIBroker* mb, const CMPIContext* c, const char* ns,
                                  const CMPIInstance* ind);
  CMPIEnumeration* (*enumerateInstanceNames)(const CMPIBroker* mb, const CMPIContext* c,
                                             const CMPIObjectPath* cls, CMPIStatus* rc);
  CMPIInstance* (*getInstance)(const CMPIBroker* mb, const CMPIContext* c,
                               const CMPIObjectPath* path, const char** props, CMPIStatus* rc);
  CMPIObjectPath* (*createInstance)(const CMPIBroker* mb, const CMPIContext* c,
                                    const CMPIObjectPath* cls, const CMPIInstance* inst,
                                    CMPIStatus* rc);
  CMPIStatus (*modifyInstance)(const CMPIBroker* mb, const CMPIContext* c,
                               const CMPIObjectPath* path, const CMPIInstance* inst,
                               const char** props);
  CMPIStatus (*deleteInstance)(const CMPIBroker* mb, const CMPIContext* c,
                               const CMPIObjectPath* path);
  CMPIEnumeration* (*execQuery)(const CMPIBroker* mb, const CMPIContext* c,
                                const CMPIObjectPath* cls, const char* query, const char* lang,
                                CMPIStatus* rc);
  CMPIEnumeration* (*enumerateInstances)(const CMPIBroker* mb, const CMPIContext* c,
                                         const CMPIObjectPath* cls, const char** props,
                                         CMPIStatus* rc);
  CMPIEnumeration* (*associators)(const CMPIBroker* mb, const CMPIContext* c,
                                  const CMPIObjectPath* path, const char* assocCls,
                                  const char* resultCls, const char* role, const char* resultRole,
                                  const char** props, CMPIStatus* rc);
  CMPIEnumeration* (*associatorNames)(const CMPIBroker* mb, const CMPIContext* c,
                                      const CMPIObjectPath* path, const char* assocCls,
                                      const char* resultCls, const char* role,
                                      const char* resultRole, CMPIStatus* rc);
  CMPIEnumeration* (*references)(const CMPIBroker* mb, const CMPIContext* c,
                                 const CMPIObjectPath* path, const char* resultCls,
                                 const char* role, const char** props, CMPIStatus* rc);
  CMPIEnumeration* (*referenceNames)(const CMPIBroker* mb, const CMPIContext* c,
                                     const CMPIObjectPath* path, const char* resultCls,
                                     const char* role, CMPIStatus* rc);
  /// `in` and `out` may be NULL.
  CMPIData (*invokeMethod)(const CMPIBroker* mb, const CMPIContext* c, const CMPIObjectPath* target,
                           const char* meth, const CMPIArgs* in, CMPIArgs* out, CMPIStatus* rc);
  CMPIStatus (*setProperty)(const CMPIBroker* mb, const CMPIContext* c, const CMPIObjectPath* path,
                            const char* prop, const CMPIValue* val, CMPIType t);
  CMPIData (*getProperty)(const CMPIBroker* mb, const CMPIContext* c, const CMPIObjectPath* path,
                          const char* prop, CMPIStatus* rc);
  // Since 2.1.
  CMPIEnumeration* (*enumerateInstancesFiltered)(const CMPIBroker* mb, const CMPIContext* c,
                                                 const CMPIObjectPath* cls, const char** props,
                                                 const char* qlang, const char* query,
                                                 CMPIStatus* rc);
  CMPIEnumeration* (*associatorsFiltered)(const CMPIBroker* mb, const CMPIContext* c,
                                          const CMPIObjectPath* path, const char* assocCls,
                                          const char* resultCls, const char* role,
                                          const char* resultRole, const char** props,
                                          const char* qlang, const char* query, CMPIStatus* rc);
  CMPIEnumeration* (*referencesFiltered)(const CMPIBroker* mb, const CMPIContext* c,
                                         const CMPIObjectPath* path, const char* resultCls,
                                         const char* role, const char** props, const char* qlang,
                                         const char* query, CMPIStatus* rc);
} CMPIBrokerFT;

/// Factories of encapsulated objects, and services over them.
typedef struct CMPIBrokerEncFT {
  CMPIVersion ftVersion;
  CMPIInstance* (*newInstance)(const CMPIBroker* mb, const CMPIObjectPath* path, CMPIStatus* rc);
  CMPIObjectPath* (*newObjectPath)(const CMPIBroker* mb, const char* ns, const char* cls,
                                   CMPIStatus* rc);
  CMPIArgs* (*newArgs)(const CMPIBroker* mb, CMPIStatus* rc);
  CMPIString* (*newString)(const CMPIBroker* mb, const char* text, CMPIStatus* rc);
  /// `elemType` with or without CMPI_ARRAY.
  CMPIArray* (*newArray)(const CMPIBroker* mb, CMPICount n, CMPIType elemType, CMPIStatus* rc);
  CMPIDateTime* (*newDateTime)(const CMPIBroker* mb, CMPIStatus* rc);
  CMPIDateTime* (*newDateTimeFromBinary)(const CMPIBroker* mb, CMPIUint64 usec,
                                         CMPIBoolean isInterval, CMPIStatus* rc);
  CMPIDateTime* (*newDateTimeFromChars)(const CMPIBroker* mb, const char* text, CMPIStatus* rc);
  CMPISelectExp* (*newSelectExp)(const CMPIBroker* mb, const char* query, const char* lang,
                                 CMPIArray** projection, CMPIStatus* rc);
  /// False for a class that is not known.
  CMPIBoolean (*classPathIsA)(const CMPIBroker* mb, const CMPIObjectPath* cls, const char* superCls,
                              CMPIStatus* rc);
  /// For any encapsulated object.
  CMPIString* (*toString)(const CMPIBroker* mb, const void* obj, CMPIStatus* rc);
  CMPIBoolean (*isOfType)(const CMPIBroker* mb, const void* obj, const char* typeName,
                          CMPIStatus* rc);
  CMPIString* (*getType)(const CMPIBroker* mb, const void* obj, CMPIStatus* rc);
  /// `$0` to `$9` in the text are replaced by `pairs` pairs of a type and a value.
  CMPIString* (*getMessage)(const CMPIBroker* mb, const char* id, const char* deflt, CMPIStatus* rc,
                            CMPICount pairs, ...);
  /// `alt` counts when `text` is NULL.
  CMPIStatus (*logMessage)(const CMPIBroker* mb, CMPISeverity sev, const char* id, const char* text,
                           const CMPIString* alt);
  CMPIStatus (*trace)(const CMPIBroker* mb, CMPILevel lev, const char* component, const char* text,
                      const CMPIString* alt);
  // Since 2.0.
  CMPIError* (*newCMPIError)(const CMPIBroker* mb, const char* owner, const char* msgId,
                             const char* msg, const CMPIErrorSeverity sev,
                             const CMPIErrorProbableCause cause, const CMPIrc code, CMPIStatus* rc);
  CMPIStatus (*openMessageFile)(const CMPIBroker* mb, const char* file, CMPIMsgFileHandle* h);
  CMPIStatus (*closeMessageFile)(const CMPIBroker* mb, const CMPIMsgFileHandle h);
  CMPIString* (*getMessage2)(const CMPIBroker* mb, const char* id, const CMPIMsgFileHandle h,
                             const char* deflt, CMPIStatus* rc, CMPICount pairs, ...);
  // Since 2.1.
  CMPIPropertyList* (*newPropertyList)(const CMPIBroker* mb, const char** props, CMPIStatus* rc);
  CMPIString* (*newStringCP)(const CMPIBroker* mb, const char* text, const CMPICodepageID cp,
                             CMPIStatus* rc);
  CMPIEnumerationFilter* (*newEnumerationFilter)(const CMPIBroker* mb, const char* qlang,
                                                 const char* query, CMPIStatus* rc);
} CMPIBrokerEncFT;

/// Threads, mutexes and conditions; numbers returned are 0 or an errno value.
typedef struct CMPIBrokerExtFT {
  CMPIVersion ftVersion;
  /// File name of a library, allocated with malloc().
  char* (*resolveFileName)(const char* libName);
  CMPI_THREAD_TYPE (*newThread)(CMPIThreadFunc f, void* arg, int detached);
  int (*joinThread)(CMPI_THREAD_TYPE t, CMPI_THREAD_RETURN* result);
  int (*exitThread)(CMPI_THREAD_RETURN result);
  int (*cancelThread)(CMPI_THREAD_TYPE t);
  int (*threadSleep)(CMPIUint32 msec);
  int (*threadOnce)(int* flag, CMPIThreadOnceFunc f);
  int (*createThreadKey)(CMPI_THREAD_KEY_TYPE* key, CMPIThreadKeyCleanupFunc f);
  int (*destroyThreadKey)(CMPI_THREAD_KEY_TYPE key);
  void* (*getThreadSpecific)(CMPI_THREAD_KEY_TYPE key);
  int (*setThreadSpecific)(CMPI_THREAD_KEY_TYPE key, void* val);
  /// Recursive.
  CMPI_MUTEX_TYPE (*newMutex)(int opt);
  void (*destroyMutex)(CMPI_MUTEX_TYPE m);
  void (*lockMutex)(CMPI_MUTEX_TYPE m);
  void (*unlockMutex)(CMPI_MUTEX_TYPE m);
  CMPI_COND_TYPE (*newCondition)(int opt);
  void (*destroyCondition)(CMPI_COND_TYPE c);
  int (*condWait)(CMPI_COND_TYPE c, CMPI_MUTEX_TYPE m);
  /// `deadline` is absolute, on the real-time clock.
  int (*timedCondWait)(CMPI_COND_TYPE c, CMPI_MUTEX_TYPE m, struct timespec* deadline);
  int (*signalCondition)(CMPI_COND_TYPE c);
  // Since 2.1.
  int (*destroyMutex2)(CMPI_MUTEX_TYPE m);
  int (*lockMutex2)(CMPI_MUTEX_TYPE m);
  int (*unlockMutex2)(CMPI_MUTEX_TYPE m);
  int (*destroyCondition2)(CMPI_COND_TYPE c);
} CMPIBrokerExtFT;

/// Memory that the broker looks after. There since 2.0; a broker may lack it (NULL).
typedef struct CMPIBrokerMemFT {
  CMPIVersion ftVersion;
  /// Opens a nested level; release() frees all but clones made since and closes it.
  CMPIGcStat* (*mark)(const CMPIBroker* mb, CMPIStatus* rc);
  CMPIStatus (*release)(const CMPIBroker* mb, const CMPIGcStat* level);
  void* (*cmpiMalloc)(const CMPIBroker* mb, size_t n);
  void* (*cmpiCalloc)(const CMPIBroker* mb, size_t count, size_t each);
  void* (*cmpiRealloc)(const CMPIBroker* mb, void* p, size_t n);
  char* (*cmpiStrDup)(const CMPIBroker* mb, const char* s);
  void (*cmpiFree)(const CMPIBroker* mb, void* p);
  void (*freeInstance)(const CMPIBroker* mb, CMPIInstance* o);
  void (*freeObjectPath)(const CMPIBroker* mb, CMPIObjectPath* o);
  void (*freeArgs)(const CMPIBroker* mb, CMPIArgs* o);
  void (*freeString)(const CMPIBroker* mb, CMPIString* o);
  void (*freeArray)(const CMPIBroker* mb, CMPIArray* o);
  void (*freeDateTime)(const CMPIBroker* mb, CMPIDateTime* o);
  void (*freeSelectExp)(const CMPIBroker* mb, CMPISelectExp* o);
  // Since 2.1.
  void (*freeChars)(const CMPIBroker* mb, char* s);
} CMPIBrokerMemFT;

/// The broker; it keeps its address until the last provider is cleaned up.
struct CMPIBroker {
  const void* hdl;
  const CMPIBrokerFT* bft;
  const CMPIBrokerEncFT* eft;
  const CMPIBrokerExtFT* xft;
  // Since 2.0.
  const CMPIBrokerMemFT* mft;
};

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif
