// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/IBrokerHost.h"
#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20::cmpi {

/// A text that is the same for two paths of the same object: hosts, the order and the case of key
/// names, and the width of numbers do not count. A path without namespace is one of `nameSpace`.
std::string GetIdentity(const TCIMReference& path, const std::string& nameSpace);

/// Whether the paths have a key in common, and all common keys are equal; or neither has keys.
bool DoKeysAgree(const TCIMReference& left, const TCIMReference& right);

/// Whether two paths name one object as far as can be told: a path may leave out its namespace or
/// some keys, and name its object by a superclass.
bool IsSameObject(const IBrokerHost& host, const TCIMReference& left, const TCIMReference& right);

}  // namespace NZEPQEL20::cmpi
