// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cimxml {

/// The elements of DSP0201 that stand for values, paths and instances, appended to a document.
/// Errors: TQELException (kInvalidArgument) for texts that XML cannot hold.

/// ` NAME="value"`, with the blank in front.
void AppendAttribute(std::string& document, std::string_view name, std::string_view value);

/// A namespace's name without slashes at its ends and doubled ones in between.
std::string TidyNamespace(const std::string& nameSpace);

/// LOCALNAMESPACEPATH: one element per part of the name; slashes at the ends do not count.
void AppendNamespace(std::string& document, const std::string& nameSpace);

/// INSTANCENAME: class and keys.
void AppendInstanceName(std::string& document, const TCIMReference& path);

/// LOCALINSTANCEPATH, or LOCALCLASSPATH for a path without keys. The host is left out: servers
/// know themselves by names that do not hold from outside.
void AppendLocalPath(std::string& document, const TCIMReference& path);

/// VALUE, VALUE.ARRAY, VALUE.REFERENCE or VALUE.REFARRAY; nothing for NULL.
void AppendValue(std::string& document, const TCIMValue& value);

/// INSTANCE with its properties; a NULL one keeps its type.
void AppendInstance(std::string& document, const TCIMInstanceData& instance);

/// Type of a parameter or property as the wire names it: "string" for an embedded instance and
/// for a value without a type.
const char* GetWireType(ECIMType type);

}  // namespace NZEPQEL20::cimxml
