// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/setup/TProviderStore.h"

namespace host {

/// What the provider commands need of the vendors' folders. Failures are TQELException.
class IProviderStore {
 public:
  virtual ~IProviderStore() = default;

  /// The folder that holds the vendors' folders.
  virtual std::string GetFolder() = 0;

  /// The installed ones, by name.
  virtual std::vector<NZEPQEL20::TProviderPackage> List() = 0;

  /// A folder, or the one that a registration file lies in.
  virtual NZEPQEL20::TProviderPackage Read(const std::string& path) = 0;

  /// What is wrong with it, errors first.
  virtual std::vector<NZEPQEL20::TProviderFinding> Check(
      const NZEPQEL20::TProviderPackage& package) = 0;

  /// Installs it as `name`, whole or not at all.
  virtual void Add(const NZEPQEL20::TProviderPackage& package, const std::string& name,
                   bool isReplacing) = 0;

  /// The bundled provider goes only when forced; kInvalidArgument otherwise.
  virtual void Remove(const std::string& name, bool isForced) = 0;
};

}  // namespace host
