// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Numbers and names of the CMPI C interface: value types, states, flags, capabilities, versions.
///
/// A type is decoded by its bits: CMPI_ARRAY marks an array of the rest; CMPI_ENC a value behind a
/// pointer; otherwise the high nibble 8 to B is an unsigned and C to F a signed integer of
/// 8 * 2^(nibble mod 4) bits. The masks CMPI_UINT and CMPI_SINT match integers of either sign.

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// Types of scalar values.
#define CMPI_null 0x0000
#define CMPI_boolean 0x0002
#define CMPI_char16 0x0003
#define CMPI_real32 0x0008
#define CMPI_real64 0x000C
#define CMPI_uint8 0x0080
#define CMPI_uint16 0x0090
#define CMPI_uint32 0x00A0
#define CMPI_uint64 0x00B0
#define CMPI_sint8 0x00C0
#define CMPI_sint16 0x00D0
#define CMPI_sint32 0x00E0
#define CMPI_sint64 0x00F0
#define CMPI_instance 0x1000
#define CMPI_ref 0x1100
#define CMPI_args 0x1200
#define CMPI_class 0x1300
#define CMPI_filter 0x1400
#define CMPI_enumeration 0x1500
#define CMPI_string 0x1600
#define CMPI_chars 0x1700
#define CMPI_dateTime 0x1800
#define CMPI_ptr 0x1900
#define CMPI_charsptr 0x1A00

/// Types of arrays: the type of the elements with CMPI_ARRAY.
#define CMPI_ARRAY 0x2000
#define CMPI_booleanA 0x2002
#define CMPI_char16A 0x2003
#define CMPI_real32A 0x2008
#define CMPI_real64A 0x200C
#define CMPI_uint8A 0x2080
#define CMPI_uint16A 0x2090
#define CMPI_uint32A 0x20A0
#define CMPI_uint64A 0x20B0
#define CMPI_sint8A 0x20C0
#define CMPI_sint16A 0x20D0
#define CMPI_sint32A 0x20E0
#define CMPI_sint64A 0x20F0
#define CMPI_instanceA 0x3000
#define CMPI_refA 0x3100
#define CMPI_stringA 0x3600
#define CMPI_charsA 0x3700
#define CMPI_dateTimeA 0x3800
#define CMPI_charsptrA 0x3A00

/// Groups of types.
#define CMPI_SIMPLE 0x0002
#define CMPI_REAL 0x0008
#define CMPI_UINT 0x0080
#define CMPI_SINT 0x00C0
#define CMPI_INTEGER 0x00C0
#define CMPI_ENC 0x1000
#define CMPI_SIMPLEA 0x2002
#define CMPI_REALA 0x2008
#define CMPI_UINTA 0x2080
#define CMPI_SINTA 0x20C0
#define CMPI_INTEGERA 0x20C0
#define CMPI_ENCA 0x3000

/// Types that keys are widened to.
#define CMPI_keyInteger 0x00F0
#define CMPI_keyString 0x1600
#define CMPI_keyBoolean 0x0002
#define CMPI_keyRef 0x1100

/// Types of predicate operands.
#define CMPI_charString 0x1600
#define CMPI_integerString 0x16F0
#define CMPI_realString 0x160C
#define CMPI_numericString 0x16FC
#define CMPI_booleanString 0x1602
#define CMPI_dateTimeString 0x1E00
#define CMPI_classNameString 0x1700
#define CMPI_nameString 0x1E00

/// Old names of types.
#define CMPI_Byte 0x00C0
#define CMPI_Short 0x00D0
#define CMPI_Int 0x00E0
#define CMPI_Long 0x00F0
#define CMPI_Float 0x0008
#define CMPI_Double 0x000C
#define CMPI_ByteA 0x20C0
#define CMPI_ShortA 0x20D0
#define CMPI_IntA 0x20E0
#define CMPI_LongA 0x20F0
#define CMPI_FloatA 0x2008
#define CMPI_DoubleA 0x200C

/// States of a value, a bit mask.
#define CMPI_goodValue 0x0000
#define CMPI_nullValue 0x0100
#define CMPI_keyValue 0x0200
#define CMPI_notFound 0x0400
#define CMPI_badValue 0x8000

/// Invocation flags, a bit mask.
#define CMPI_FLAG_LocalOnly 1
#define CMPI_FLAG_DeepInheritance 2
#define CMPI_FLAG_IncludeQualifiers 4
#define CMPI_FLAG_IncludeClassOrigin 8

/// Capabilities of a broker; each includes those it depends on.
#define CMPI_MB_BasicRead 0x1
#define CMPI_MB_BasicWrite 0x3
#define CMPI_MB_InstanceManipulation 0x7
#define CMPI_MB_AssociationTraversal 0x9
#define CMPI_MB_QueryExecution 0x11
#define CMPI_MB_QueryNormalization 0x31
#define CMPI_MB_BasicQualifierSupport 0x47
#define CMPI_MB_Indications 0x81
#define CMPI_MB_OSEncapsulationSupport 0x100
#define CMPI_MB_Supports_MemEnhancements 0x4000
#define CMPI_MB_Supports_Extended_Error 0x8000
#define CMPI_MB_Logging 0x10000
#define CMPI_MB_Tracing 0x20000
#define CMPI_MB_PropertyFiltering 0x40001
#define CMPI_MB_CodepageConversion 0x80000
#define CMPI_MB_Class_0 0x1
#define CMPI_MB_Class_1 0x3
#define CMPI_MB_Class_2 0x7

/// Versions of the interface.
#define CMPIVersion100 100
#define CMPIVersion200 200
#define CMPIVersion210 210
#define CMPICurrentVersion 210

/// Names of context entries.
#define CMPIInitNameSpace "CMPIInitNameSpace"
#define CMPIInvocationFlags "CMPIInvocationFlags"
#define CMPIPrincipal "CMPIPrincipal"
#define CMPIRole "CMPIRole"
#define CMPIAcceptLanguage "CMPIAcceptLanguage"
#define CMPIContentLanguage "CMPIContentLanguage"

// NOLINTEND(readability-identifier-naming)
