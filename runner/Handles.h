// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

/// Ways to reach into object-model handles that may be null.
namespace runner {

/// Errors: always throws TQELException (kNotFound): the platform gave no `what`.
[[noreturn]] void ThrowMissing(const char* what);

/// The object behind `handle`.
/// Errors: TQELException naming `what` when the platform gave no object.
template <typename TObject>
TObject& Need(const boost::shared_ptr<TObject>& handle, const char* what) {
  if (!handle) ThrowMissing(what);
  return *handle;
}

/// The property's value; NULL when the instance has no such property.
NZEPQEL20::TCIMValue GetValue(NZEPQEL20::ICIMInstance& instance, const std::string& property);

/// The property as a person reads it; empty when the instance has no such property.
std::string GetText(NZEPQEL20::ICIMInstance& instance, const char* property);

/// The reference that the property holds; a null reference when there is none.
/// Errors: TQELException when the value is no reference.
NZEPQEL20::TCIMReference GetReference(NZEPQEL20::ICIMInstance& instance,
                                      const std::string& property);

/// Fetches the object behind `path` from the namespace of its class; the handle may be null.
/// Errors: TQELException when class or namespace are missing, and what they throw.
boost::shared_ptr<NZEPQEL20::ICIMInstance> Fetch(const NZEPQEL20::TCIMReference& path,
                                                 const NZEPQEL20::TKeyMap& context);

/// The namespace through which a provider's own upcall would find the object behind `path`: that
/// of the "plugin" namespace of its class, or of `fallback` where that is not served by CMPI.
/// Never null.
/// Errors: TQELException when the class is missing or neither namespace is served by CMPI.
boost::shared_ptr<NZEPQEL20::ICIMNamespace> GetUpcallNamespace(
    const NZEPQEL20::TCIMReference& path,
    const boost::shared_ptr<NZEPQEL20::ICIMNamespace>& fallback);

}  // namespace runner
