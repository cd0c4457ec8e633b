// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TByteReader.h"
#include "platform/schema/TByteWriter.h"

namespace NZEPQEL20 {

// Values and instances as bytes. Decoding fails with TQELException for bytes that are none.

void EncodeValue(TByteWriter& out, const TCIMValue& value);
TCIMValue DecodeValue(TByteReader& in, unsigned int depth = 0);

void EncodeInstance(TByteWriter& out, const TCIMInstanceData& instance);
TCIMInstanceData DecodeInstance(TByteReader& in, unsigned int depth = 0);

ECIMType DecodeType(TByteReader& in);

}  // namespace NZEPQEL20
