// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
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

  /// The same for its methods: where they are served, else as FindNamespace().
  virtual std::string FindMethodNamespace(const std::string& nameSpace,
                                          const std::string& className) const = 0;

  /// Null for a class that is not known.
  virtual std::shared_ptr<const TCIMClassDeclaration> FindClass(
      const std::string& className) const = 0;

  /// Whether `className` is `superclass` or inherits from it; false for an unknown class that is
  /// not the same.
  virtual bool IsA(const std::string& className, const std::string& superclass) const = 0;

  /// One property from a provider of single properties; none when no such provider serves it.
  /// Errors: TQELException, as a failed operation.
  virtual std::optional<TCIMValue> GetProperty(const TCIMReference& path,
                                               const std::string& name) = 0;
  /// Sets one property by such a provider; false when there is none for it.
  /// Errors: as GetProperty().
  virtual bool SetProperty(const TCIMReference& path, const std::string& name,
                           const TCIMValue& value) = 0;
};

}  // namespace NZEPQEL20::cmpi
