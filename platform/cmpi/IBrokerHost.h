// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20::cmpi {

/// What the broker needs of whoever drives the providers.
/// Threads: safe from several.
class IBrokerHost {
 public:
  virtual ~IBrokerHost() = default;

  /// Where a provider's upcalls go.
  virtual ICIMOperations& GetOperations() = 0;

  /// The namespace in which an object of `className` is to be looked for: `nameSpace` itself when
  /// the class is served there, else the first one where it is, else `nameSpace`.
  virtual std::string FindNamespace(const std::string& nameSpace,
                                    const std::string& className) const = 0;

  /// Null for a class that is not known.
  virtual std::shared_ptr<const TCIMClassDeclaration> FindClass(
      const std::string& className) const = 0;

  /// Whether `className` is `superclass` or inherits from it; false for an unknown class that is
  /// not the same.
  virtual bool IsA(const std::string& className, const std::string& superclass) const = 0;
};

}  // namespace NZEPQEL20::cmpi
