// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cimxml {

/// The CIM type called `name` on the wire, whatever its case; kString for what is no type.
ECIMType ReadWireType(std::string_view name);

/// `text` as a value of `type`, a scalar other than a reference or an instance: numbers decimal or
/// after "0x", blanks around them; a text that is empty is NULL unless `type` is a string. No value
/// for a text that is none of `type`.
std::optional<TCIMValue> ReadWireValue(ECIMType type, std::string& text);

/// A key as its KEYVALUE gives it. `valueType` is "string", "boolean" or "numeric", `type` the
/// exact type, either may be empty; `type` holds where it is a type that `text` fits. A text that
/// fits neither stays one: such a path must go back to the server as it came.
TCIMValue ReadKeyValue(std::string_view valueType, std::string_view type, std::string& text);

}  // namespace NZEPQEL20::cimxml
