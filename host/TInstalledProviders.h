// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/IProviderStore.h"

namespace host {

/// The vendors' folders of an installation root.
class TInstalledProviders : public IProviderStore {
 public:
  /// `root` empty: as the environment or the install prefix says. The tests will be looked for in
  /// `nameSpace`.
  /// Errors: TQELException when the root is unusable.
  TInstalledProviders(const std::string& root, const std::string& nameSpace);

  std::string GetFolder() override;
  std::vector<NZEPQEL20::TProviderPackage> List() override;
  NZEPQEL20::TProviderPackage Read(const std::string& path) override;
  std::vector<NZEPQEL20::TProviderFinding> Check(
      const NZEPQEL20::TProviderPackage& package) override;
  void Add(const NZEPQEL20::TProviderPackage& package, const std::string& name,
           bool isReplacing) override;
  void Remove(const std::string& name, bool isForced) override;

 private:
  std::string m_root;
  NZEPQEL20::TProviderStore m_store;
};

}  // namespace host
