// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cmpi/abi/cmpi.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cmpi {

/// The C type of a scalar of `type`.
CMPIType ToCMPIType(ECIMType type);

/// The type of a scalar, or of the elements of an array.
/// Errors: TBrokerFault (CMPI_RC_ERR_INVALID_DATA_TYPE) for what no CIM value has.
ECIMType FromCMPIType(CMPIType type);

/// A deep copy of what a provider passes as `value` and `type`; texts that are not UTF-8 are
/// mended. Exactly the width of the type is read, aligned or not; for CMPI_chars `value` is the
/// text itself. NULL, and an object pointer that is NULL, give a NULL of the type.
/// Errors: TBrokerFault, as FromCMPIType(), and for objects that the broker never made.
TCIMValue FromCMPI(const CMPIValue* value, CMPIType type);

/// The same for a value within a CMPIData; NULL when its state says so.
TCIMValue FromCMPI(const CMPIData& data);

/// `value` for a provider; the objects in it belong to the current scope. Small integers are
/// extended over 8 bytes.
CMPIData ToCMPI(const TCIMValue& value);

}  // namespace NZEPQEL20::cmpi
