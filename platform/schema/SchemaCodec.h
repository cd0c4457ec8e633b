// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TByteReader.h"
#include "platform/schema/TByteWriter.h"
#include "platform/schema/TMofError.h"
#include "platform/schema/TSchemaClass.h"
#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

// Declarations as bytes. Decoding gives back what was encoded, or fails with TQELException,
// whatever the bytes are.

std::string EncodeClass(const TSchemaClass& declaration);
TSchemaClass DecodeClass(std::string_view bytes);

std::string EncodeInstances(const std::vector<TCIMInstanceData>& instances);
std::vector<TCIMInstanceData> DecodeInstances(std::string_view bytes);

void EncodeProblem(TByteWriter& out, const TMofError& problem);
TMofError DecodeProblem(TByteReader& in);

/// Bytes that a source takes at the least.
constexpr std::size_t kLeastSource = 53;
void EncodeSource(TByteWriter& out, const TSchemaSource& source);
TSchemaSource DecodeSource(TByteReader& in);

}  // namespace NZEPQEL20
