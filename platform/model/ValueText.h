// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// Whether `type` is one of the integers, signed or not.
constexpr bool IsIntegerType(ECIMType type) {
  return type >= ECIMType::kUInt8 && type <= ECIMType::kSInt64;
}

/// `value` as a person reads it: the word that Values gives it, by ValueMap or, where there is
/// none, by position from 0; an array element by element, joined with ",". What no entry maps reads
/// as TCIMValue::ToString(10).
///
/// An exact entry counts before a closed range, that before an open one, that before "..".
std::string GetReadableText(const TCIMElementDeclaration& declaration, const TCIMValue& value);

/// The way back: the number behind a word of Values, in decimal digits. None for what is no such
/// word (ASCII letters compare without case), and for one that a range stands for.
std::optional<std::string> FindNumberOf(const TCIMElementDeclaration& declaration,
                                        const std::string& word);

}  // namespace NZEPQEL20
