// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TByteReader.h"
#include "platform/schema/TByteWriter.h"
#include "platform/schema/TMofError.h"
#include "platform/schema/TSchemaClass.h"

namespace NZEPQEL20 {

// Declarations as bytes. Decoding gives back what was encoded, or fails with TQELException,
// whatever the bytes are.

std::string EncodeClass(const TSchemaClass& declaration);
TSchemaClass DecodeClass(std::string_view bytes);

std::string EncodeInstances(const std::vector<TCIMInstanceData>& instances);
std::vector<TCIMInstanceData> DecodeInstances(std::string_view bytes);

void EncodeProblem(TByteWriter& out, const TMofError& problem);
TMofError DecodeProblem(TByteReader& in);

}  // namespace NZEPQEL20
