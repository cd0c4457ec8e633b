// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TClassTree.h"
#include "platform/schema/TSchemaClass.h"

namespace NZEPQEL20 {

class TClassRepository;

/// Where a repository has its declarations from: files that were read, or a cache of them.
/// Threads: safe from several.
class ISchemaClasses {
 public:
  virtual ~ISchemaClasses() = default;

  virtual const TClassTree& GetTree() const = 0;

  /// The class at `place` of the tree as its own declaration reads, without what it inherits.
  /// Errors: TQELException when it cannot be read any more.
  virtual std::shared_ptr<const TSchemaClass> GetClass(std::size_t place) const = 0;

  /// The declared instances, typed by `classes`. Errors: like GetClass().
  virtual std::vector<TCIMInstanceData> GetInstances(const TClassRepository& classes) const = 0;
};

}  // namespace NZEPQEL20
