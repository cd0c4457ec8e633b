// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"

namespace NZEPQEL20 {

/// The qualifier called `name`, compared without case; null when there is none.
const TCIMQualifier* FindQualifier(const std::vector<TCIMQualifier>& qualifiers, const char* name);

/// Whether the boolean qualifier is there and TRUE.
bool HasQualifier(const std::vector<TCIMQualifier>& qualifiers, const char* name);

/// Fill in what the qualifiers that a declaration has (DSP0004) say about it: words and numbers of
/// its values, whether a string holds an instance, key, direction, kind of class. What a class
/// contains is not looked at.
void ApplyElementQualifiers(TCIMElementDeclaration& element);
void ApplyPropertyQualifiers(TCIMPropertyDeclaration& property);
void ApplyParameterQualifiers(TCIMParameterDeclaration& parameter);
void ApplyClassQualifiers(TCIMClassDeclaration& declaration);

}  // namespace NZEPQEL20
