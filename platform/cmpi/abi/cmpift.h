// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Objects that a broker hands to providers, and their function tables (CMPI 1.0 to 2.1).
///
/// In every table `ftVersion` is the highest version that the broker supports; members are only
/// ever appended, so a provider built for an older version finds its own prefix. `rc` may be NULL
/// wherever it is an argument. Objects returned live until the provider function that runs on the
/// thread returns; clones live until their release().
#include "platform/cmpi/abi/cmpiconst.h"
#include "platform/cmpi/abi/cmpidt.h"
#include "platform/cmpi/abi/cmpienum.h"

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// Names compare without case.
typedef struct CMPIContextFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIContext* c);
  CMPIContext* (*clone)(const CMPIContext* c, CMPIStatus* rc);
  CMPIData (*getEntry)(const CMPIContext* c, const char* name, CMPIStatus* rc);
  CMPIData (*getEntryAt)(const CMPIContext* c, CMPICount i, CMPIString** name, CMPIStatus* rc);
  CMPICount (*getEntryCount)(const CMPIContext* c, CMPIStatus* rc);
  CMPIStatus (*addEntry)(const CMPIContext* c, const char* name, const CMPIValue* val,
                         const CMPIType t);
} CMPIContextFT;

/// Circumstances of a call: named values.
struct CMPIContext {
  const void* hdl;
  const CMPIContextFT* ft;
};

/// Values are copied at the call. returnDone() is a marker that no broker may insist on.
typedef struct CMPIResultFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIResult* r);
  CMPIResult* (*clone)(const CMPIResult* r, CMPIStatus* rc);
  CMPIStatus (*returnData)(const CMPIResult* r, const CMPIValue* val, const CMPIType t);
  CMPIStatus (*returnInstance)(const CMPIResult* r, const CMPIInstance* inst);
  CMPIStatus (*returnObjectPath)(const CMPIResult* r, const CMPIObjectPath* path);
  CMPIStatus (*returnDone)(const CMPIResult* r);
  // Since 2.0.
  CMPIStatus (*returnError)(const CMPIResult* r, const CMPIError* e);
} CMPIResultFT;

/// Takes the results of a provider function, until that function returns.
struct CMPIResult {
  const void* hdl;
  const CMPIResultFT* ft;
};

/// The text lives as long as its string.
typedef struct CMPIStringFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIString* s);
  CMPIString* (*clone)(const CMPIString* s, CMPIStatus* rc);
  const char* (*getCharPtr)(const CMPIString* s, CMPIStatus* rc);
  // Since 2.1.
  char* (*newCharsCP)(const CMPIString* s, const CMPICodepageID cp, CMPIStatus* rc);
} CMPIStringFT;

/// Immutable UTF-8 text. `hdl` is the NUL-terminated text itself.
struct CMPIString {
  const void* hdl;
  const CMPIStringFT* ft;
};

/// Elements are typed and NULL at birth; CMPI_chars is stored as CMPI_string.
typedef struct CMPIArrayFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIArray* a);
  CMPIArray* (*clone)(const CMPIArray* a, CMPIStatus* rc);
  CMPICount (*getSize)(const CMPIArray* a, CMPIStatus* rc);
  CMPIType (*getSimpleType)(const CMPIArray* a, CMPIStatus* rc);
  CMPIData (*getElementAt)(const CMPIArray* a, CMPICount i, CMPIStatus* rc);
  CMPIStatus (*setElementAt)(const CMPIArray* a, CMPICount i, const CMPIValue* val, CMPIType t);
} CMPIArrayFT;

/// Fixed number of elements of one type.
struct CMPIArray {
  const void* hdl;
  const CMPIArrayFT* ft;
};

/// getNext() past the end answers CMPI_RC_NO_MORE_ELEMENTS and a NULL value.
typedef struct CMPIEnumerationFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIEnumeration* e);
  CMPIEnumeration* (*clone)(const CMPIEnumeration* e, CMPIStatus* rc);
  CMPIData (*getNext)(const CMPIEnumeration* e, CMPIStatus* rc);
  CMPIBoolean (*hasNext)(const CMPIEnumeration* e, CMPIStatus* rc);
  CMPIArray* (*toArray)(const CMPIEnumeration* e, CMPIStatus* rc);
} CMPIEnumerationFT;

/// Forward cursor over a copy of an upcall's results.
struct CMPIEnumeration {
  const void* hdl;
  const CMPIEnumerationFT* ft;
};

/// Property names compare without case and keep their first spelling and order.
typedef struct CMPIInstanceFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIInstance* o);
  CMPIInstance* (*clone)(const CMPIInstance* o, CMPIStatus* rc);
  CMPIData (*getProperty)(const CMPIInstance* o, const char* name, CMPIStatus* rc);
  CMPIData (*getPropertyAt)(const CMPIInstance* o, CMPICount i, CMPIString** name, CMPIStatus* rc);
  CMPICount (*getPropertyCount)(const CMPIInstance* o, CMPIStatus* rc);
  /// With CMPI_chars `val` is the text itself, otherwise it points to the value, which need not be
  /// wider than its type nor aligned. The same holds wherever a value and its type are passed.
  CMPIStatus (*setProperty)(const CMPIInstance* o, const char* name, const CMPIValue* val,
                            CMPIType t);
  CMPIObjectPath* (*getObjectPath)(const CMPIInstance* o, CMPIStatus* rc);
  /// Drops properties that are not listed, now and later; keys stay.
  CMPIStatus (*setPropertyFilter)(const CMPIInstance* o, const char** props, const char** keys);
  CMPIStatus (*setObjectPath)(const CMPIInstance* o, const CMPIObjectPath* path);
  // Since 2.0.
  CMPIStatus (*setPropertyWithOrigin)(const CMPIInstance* o, const char* name, const CMPIValue* val,
                                      const CMPIType t, const char* originCls);
} CMPIInstanceFT;

/// A CIM instance.
struct CMPIInstance {
  const void* hdl;
  const CMPIInstanceFT* ft;
};

/// Getters of what was never set answer with an empty string. Namespace setters that take a path
/// copy no class.
typedef struct CMPIObjectPathFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIObjectPath* p);
  CMPIObjectPath* (*clone)(const CMPIObjectPath* p, CMPIStatus* rc);
  CMPIStatus (*setNameSpace)(const CMPIObjectPath* p, const char* ns);
  CMPIString* (*getNameSpace)(const CMPIObjectPath* p, CMPIStatus* rc);
  CMPIStatus (*setHostname)(const CMPIObjectPath* p, const char* host);
  CMPIString* (*getHostname)(const CMPIObjectPath* p, CMPIStatus* rc);
  CMPIStatus (*setClassName)(const CMPIObjectPath* p, const char* cls);
  CMPIString* (*getClassName)(const CMPIObjectPath* p, CMPIStatus* rc);
  CMPIStatus (*addKey)(const CMPIObjectPath* p, const char* name, const CMPIValue* val,
                       const CMPIType t);
  CMPIData (*getKey)(const CMPIObjectPath* p, const char* name, CMPIStatus* rc);
  CMPIData (*getKeyAt)(const CMPIObjectPath* p, CMPICount i, CMPIString** name, CMPIStatus* rc);
  CMPICount (*getKeyCount)(const CMPIObjectPath* p, CMPIStatus* rc);
  CMPIStatus (*setNameSpaceFromObjectPath)(const CMPIObjectPath* p, const CMPIObjectPath* src);
  CMPIStatus (*setHostAndNameSpaceFromObjectPath)(const CMPIObjectPath* p,
                                                  const CMPIObjectPath* src);
  CMPIData (*getClassQualifier)(const CMPIObjectPath* p, const char* qual, CMPIStatus* rc);
  CMPIData (*getPropertyQualifier)(const CMPIObjectPath* p, const char* prop, const char* qual,
                                   CMPIStatus* rc);
  CMPIData (*getMethodQualifier)(const CMPIObjectPath* p, const char* meth, const char* qual,
                                 CMPIStatus* rc);
  CMPIData (*getParameterQualifier)(const CMPIObjectPath* p, const char* meth, const char* parm,
                                    const char* qual, CMPIStatus* rc);
  CMPIString* (*toString)(const CMPIObjectPath* p, CMPIStatus* rc);
} CMPIObjectPathFT;

/// Host, namespace, class and keys.
struct CMPIObjectPath {
  const void* hdl;
  const CMPIObjectPathFT* ft;
};

/// Argument names compare without case.
typedef struct CMPIArgsFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIArgs* a);
  CMPIArgs* (*clone)(const CMPIArgs* a, CMPIStatus* rc);
  CMPIStatus (*addArg)(const CMPIArgs* a, const char* name, const CMPIValue* val, const CMPIType t);
  CMPIData (*getArg)(const CMPIArgs* a, const char* name, CMPIStatus* rc);
  CMPIData (*getArgAt)(const CMPIArgs* a, CMPICount i, CMPIString** name, CMPIStatus* rc);
  CMPICount (*getArgCount)(const CMPIArgs* a, CMPIStatus* rc);
} CMPIArgsFT;

/// Arguments of a method, by name.
struct CMPIArgs {
  const void* hdl;
  const CMPIArgsFT* ft;
};

/// Binary form: microseconds, since 1970-01-01 UTC for a point in time.
typedef struct CMPIDateTimeFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIDateTime* d);
  CMPIDateTime* (*clone)(const CMPIDateTime* d, CMPIStatus* rc);
  CMPIUint64 (*getBinaryFormat)(const CMPIDateTime* d, CMPIStatus* rc);
  CMPIString* (*getStringFormat)(const CMPIDateTime* d, CMPIStatus* rc);
  CMPIBoolean (*isInterval)(const CMPIDateTime* d, CMPIStatus* rc);
} CMPIDateTimeFT;

/// A point in time or an interval.
struct CMPIDateTime {
  const void* hdl;
  const CMPIDateTimeFT* ft;
};

/// A query is used by indications and execQuery() only.
typedef struct CMPISelectExpFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPISelectExp* q);
  CMPISelectExp* (*clone)(const CMPISelectExp* q, CMPIStatus* rc);
  CMPIBoolean (*evaluate)(const CMPISelectExp* q, const CMPIInstance* inst, CMPIStatus* rc);
  CMPIString* (*getString)(const CMPISelectExp* q, CMPIStatus* rc);
  CMPISelectCond* (*getDOC)(const CMPISelectExp* q, CMPIStatus* rc);
  CMPISelectCond* (*getCOD)(const CMPISelectExp* q, CMPIStatus* rc);
  CMPIBoolean (*evaluateUsingAccessor)(const CMPISelectExp* q, CMPIAccessor* f, void* user,
                                       CMPIStatus* rc);
} CMPISelectExpFT;

/// A query.
struct CMPISelectExp {
  const void* hdl;
  const CMPISelectExpFT* ft;
};

/// `kind` receives a CMPISelectCondType.
typedef struct CMPISelectCondFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPISelectCond* c);
  CMPISelectCond* (*clone)(const CMPISelectCond* c, CMPIStatus* rc);
  CMPICount (*getCountAndType)(const CMPISelectCond* c, int* kind, CMPIStatus* rc);
  CMPISubCond* (*getSubCondAt)(const CMPISelectCond* c, CMPICount i, CMPIStatus* rc);
} CMPISelectCondFT;

/// The condition of a query in disjunctive or conjunctive form.
struct CMPISelectCond {
  const void* hdl;
  const CMPISelectCondFT* ft;
};

/// Predicates by position or by their left-hand name.
typedef struct CMPISubCondFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPISubCond* c);
  CMPISubCond* (*clone)(const CMPISubCond* c, CMPIStatus* rc);
  CMPICount (*getCount)(const CMPISubCond* c, CMPIStatus* rc);
  CMPIPredicate* (*getPredicateAt)(const CMPISubCond* c, CMPICount i, CMPIStatus* rc);
  CMPIPredicate* (*getPredicate)(const CMPISubCond* c, const char* lhsName, CMPIStatus* rc);
} CMPISubCondFT;

/// One term of a condition.
struct CMPISubCond {
  const void* hdl;
  const CMPISubCondFT* ft;
};

/// Operands as text.
typedef struct CMPIPredicateFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIPredicate* p);
  CMPIPredicate* (*clone)(const CMPIPredicate* p, CMPIStatus* rc);
  CMPIStatus (*getData)(const CMPIPredicate* p, CMPIType* t, CMPIPredOp* op, CMPIString** lhs,
                        CMPIString** rhs);
  CMPIBoolean (*evaluateUsingAccessor)(const CMPIPredicate* p, CMPIAccessor* f, void* user,
                                       CMPIStatus* rc);
} CMPIPredicateFT;

/// One comparison of a term.
struct CMPIPredicate {
  const void* hdl;
  const CMPIPredicateFT* ft;
};

/// What was not set reads as NULL or 0.
typedef struct CMPIErrorFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIError* e);
  CMPIError* (*clone)(const CMPIError* e, CMPIStatus* rc);
  CMPIErrorType (*getErrorType)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getOtherErrorType)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getOwningEntity)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getMessageID)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getMessage)(const CMPIError* e, CMPIStatus* rc);
  CMPIErrorSeverity (*getPerceivedSeverity)(const CMPIError* e, CMPIStatus* rc);
  CMPIErrorProbableCause (*getProbableCause)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getProbableCauseDescription)(const CMPIError* e, CMPIStatus* rc);
  CMPIArray* (*getRecommendedActions)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getErrorSource)(const CMPIError* e, CMPIStatus* rc);
  CMPIErrorSrcFormat (*getErrorSourceFormat)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getOtherErrorSourceFormat)(const CMPIError* e, CMPIStatus* rc);
  CMPIrc (*getCIMStatusCode)(const CMPIError* e, CMPIStatus* rc);
  CMPIString* (*getCIMStatusCodeDescription)(const CMPIError* e, CMPIStatus* rc);
  CMPIArray* (*getMessageArguments)(const CMPIError* e, CMPIStatus* rc);
  CMPIStatus (*setErrorType)(const CMPIError* e, const CMPIErrorType v);
  CMPIStatus (*setOtherErrorType)(const CMPIError* e, const char* v);
  CMPIStatus (*setProbableCauseDescription)(const CMPIError* e, const char* v);
  CMPIStatus (*setRecommendedActions)(const CMPIError* e, const CMPIArray* v);
  CMPIStatus (*setErrorSource)(const CMPIError* e, const char* v);
  CMPIStatus (*setErrorSourceFormat)(const CMPIError* e, const CMPIErrorSrcFormat v);
  CMPIStatus (*setOtherErrorSourceFormat)(const CMPIError* e, const char* v);
  CMPIStatus (*setCIMStatusCodeDescription)(const CMPIError* e, const char* v);
  CMPIStatus (*setMessageArguments)(const CMPIError* e, const CMPIArray* v);
} CMPIErrorFT;

/// Detailed error after CIM_Error.
struct CMPIError {
  const void* hdl;
  const CMPIErrorFT* ft;
};

/// Names compare without case.
typedef struct CMPIPropertyListFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIPropertyList* l);
  CMPIPropertyList* (*clone)(const CMPIPropertyList* l, CMPIStatus* rc);
  CMPIBoolean (*isPropertyInList)(const CMPIPropertyList* l, const char* prop, CMPIStatus* rc);
  const char** (*getProperties)(const CMPIPropertyList* l, CMPIStatus* rc);
} CMPIPropertyListFT;

/// Names of the properties that a request wants.
struct CMPIPropertyList {
  const void* hdl;
  const CMPIPropertyListFT* ft;
};

/// Matches one instance at a time.
typedef struct CMPIEnumerationFilterFT {
  CMPIVersion ftVersion;
  CMPIStatus (*release)(CMPIEnumerationFilter* f);
  CMPIEnumerationFilter* (*clone)(const CMPIEnumerationFilter* f, CMPIStatus* rc);
  CMPIBoolean (*match)(const CMPIEnumerationFilter* f, const CMPIInstance* inst, CMPIStatus* rc);
} CMPIEnumerationFilterFT;

/// A filter over enumerated instances.
struct CMPIEnumerationFilter {
  const void* hdl;
  const CMPIEnumerationFilterFT* ft;
};

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif
