// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Scalar types, values and status of the CMPI C interface (layouts of 1.0 to 2.1, LP64).

/// Makes an enumeration an int in C++ as it is in C: the other side may send any number.
#ifdef __cplusplus
#define CMPI_INT_ENUM : int
#else
#define CMPI_INT_ENUM
#endif

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// Scalar types; their widths are those of every LP64 platform.
typedef unsigned char CMPIBoolean;
typedef unsigned short CMPIChar16;
typedef unsigned char CMPIUint8;
typedef unsigned short CMPIUint16;
typedef unsigned int CMPIUint32;
typedef unsigned long long CMPIUint64;
typedef signed char CMPISint8;
typedef short CMPISint16;
typedef int CMPISint32;
typedef long long CMPISint64;
typedef float CMPIReal32;
typedef double CMPIReal64;
typedef unsigned int CMPICount;
typedef unsigned short CMPIType;
typedef unsigned short CMPIValueState;
typedef unsigned int CMPIFlags;
typedef int CMPIVersion;
typedef void* CMPIMsgFileHandle;
typedef void CMPIGcStat;

/// Handles of threads, thread keys, mutexes and conditions, opaque to providers.
#define CMPI_THREAD_TYPE void*
#define CMPI_THREAD_RETURN void*
#define CMPI_THREAD_KEY_TYPE unsigned int
#define CMPI_MUTEX_TYPE void*
#define CMPI_COND_TYPE void*

/// Main function of a thread made through the broker.
typedef void* (*CMPIThreadFunc)(void*);
/// Runs once per flag.
typedef void (*CMPIThreadOnceFunc)(void);
/// Destroys what a thread key holds when its thread ends.
typedef void (*CMPIThreadKeyCleanupFunc)(void*);

/// Objects with a function table each: `hdl` first, `ft` second, private fields of their maker
/// behind. They are only ever handled by pointer.
typedef struct CMPIBroker CMPIBroker;
typedef struct CMPIContext CMPIContext;
typedef struct CMPIResult CMPIResult;
typedef struct CMPIString CMPIString;
typedef struct CMPIArray CMPIArray;
typedef struct CMPIEnumeration CMPIEnumeration;
typedef struct CMPIInstance CMPIInstance;
typedef struct CMPIObjectPath CMPIObjectPath;
typedef struct CMPIArgs CMPIArgs;
typedef struct CMPIDateTime CMPIDateTime;
typedef struct CMPISelectExp CMPISelectExp;
typedef struct CMPISelectCond CMPISelectCond;
typedef struct CMPISubCond CMPISubCond;
typedef struct CMPIPredicate CMPIPredicate;
typedef struct CMPIError CMPIError;
typedef struct CMPIPropertyList CMPIPropertyList;
typedef struct CMPIEnumerationFilter CMPIEnumerationFilter;

/// Bytes with a length that is not a CIM value.
typedef struct CMPIValuePtr {
  void* ptr;
  CMPICount length;
} CMPIValuePtr;

/// Any value; CMPIType says which member counts. A reader of a wider integer member sees the
/// narrower one zero-extended.
typedef union CMPIValue {
  CMPIBoolean boolean;
  CMPIChar16 char16;
  CMPIUint8 uint8;
  CMPIUint16 uint16;
  CMPIUint32 uint32;
  CMPIUint64 uint64;
  CMPISint8 sint8;
  CMPISint16 sint16;
  CMPISint32 sint32;
  CMPISint64 sint64;
  CMPIReal32 real32;
  CMPIReal64 real64;
  CMPIInstance* inst;
  CMPIObjectPath* ref;
  CMPIArgs* args;
  CMPISelectExp* filter;
  CMPIEnumeration* Enum;
  CMPIArray* array;
  CMPIString* string;
  char* chars;
  CMPIDateTime* dateTime;
  CMPIValuePtr dataPtr;
  // Old names of the signed integers and the reals.
  CMPISint8 Byte;
  CMPISint16 Short;
  CMPISint32 Int;
  CMPISint64 Long;
  CMPIReal32 Float;
  CMPIReal64 Double;
} CMPIValue;

/// A value with its type and state.
typedef struct CMPIData {
  CMPIType type;
  CMPIValueState state;
  CMPIValue value;
} CMPIData;

/// Return codes. 1 to 29 are CIM status codes; others may come from providers, too.
typedef enum CMPIrc CMPI_INT_ENUM {
  CMPI_RC_OK = 0,
  CMPI_RC_ERR_FAILED = 1,
  CMPI_RC_ERR_ACCESS_DENIED = 2,
  CMPI_RC_ERR_INVALID_NAMESPACE = 3,
  CMPI_RC_ERR_INVALID_PARAMETER = 4,
  CMPI_RC_ERR_INVALID_CLASS = 5,
  CMPI_RC_ERR_NOT_FOUND = 6,
  CMPI_RC_ERR_NOT_SUPPORTED = 7,
  CMPI_RC_ERR_CLASS_HAS_CHILDREN = 8,
  CMPI_RC_ERR_CLASS_HAS_INSTANCES = 9,
  CMPI_RC_ERR_INVALID_SUPERCLASS = 10,
  CMPI_RC_ERR_ALREADY_EXISTS = 11,
  CMPI_RC_ERR_NO_SUCH_PROPERTY = 12,
  CMPI_RC_ERR_TYPE_MISMATCH = 13,
  CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED = 14,
  CMPI_RC_ERR_INVALID_QUERY = 15,
  CMPI_RC_ERR_METHOD_NOT_AVAILABLE = 16,
  CMPI_RC_ERR_METHOD_NOT_FOUND = 17,
  CMPI_RC_NO_MORE_ELEMENTS = 18,
  CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED = 27,
  CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED = 29,
  CMPI_RC_DO_NOT_UNLOAD = 50,
  CMPI_RC_NEVER_UNLOAD = 51,
  CMPI_RC_ERR_INVALID_HANDLE = 60,
  CMPI_RC_ERR_INVALID_DATA_TYPE = 61,
  CMPI_RC_ERR_NOT_IN_CODEPAGE = 62,
  CMPI_RC_ERROR_SYSTEM = 100,
  CMPI_RC_ERROR = 200
} CMPIrc;

/// Outcome of a call. `msg` counts only when `rc` is not CMPI_RC_OK.
typedef struct CMPIStatus {
  CMPIrc rc;
  CMPIString* msg;
} CMPIStatus;

/// Gives the value of a property to an expression evaluator.
typedef CMPIData CMPIAccessor(const char* propName, void* user);

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif
