// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20 {

/// `value` as a value of `declared`, so that a provider meets the type it was written for: texts
/// become numbers, paths or times, numbers change their width.
/// Errors: TQELException (kTypeMismatch) naming `what` and both types.
TCIMValue ConvertTo(const TCIMElementDeclaration& declared, const TCIMValue& value,
                    const std::string& what);

/// A value that somebody else has given for `declared`. More gently than ConvertTo(): a word of
/// Values is its number, a scalar an array of one element, and the other way round. What has the
/// type already, NULL, embedded instances, and a reference where none is declared stay as they are.
/// Errors: as ConvertTo().
TCIMValue ConvertGiven(const TCIMElementDeclaration& declared, const TCIMValue& value,
                       const std::string& what);

/// `path` with keys of the types that `declaration` (may be null) has for them. A key that cannot
/// be converted stays as it is: the provider will not find it.
TCIMReference ConvertKeys(const TCIMReference& path, const TCIMClassDeclaration* declaration);

/// The declared parameter called `name`, compared without case; null when there is none, or no
/// declaration of the method.
const TCIMParameterDeclaration* FindParameter(const TCIMMethodDeclaration* method,
                                              const std::string& name);

}  // namespace NZEPQEL20
