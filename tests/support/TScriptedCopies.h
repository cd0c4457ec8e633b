// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// The instances that were copied, in order.
class TScriptedCopies {
 public:
  struct TCopy {
    TInstancePtr instance;
    TNamespacePtr ns;
  };

  static TScriptedCopies& Get();

  void Clear() { m_copies.clear(); }
  void Add(const TInstancePtr& instance, const TNamespacePtr& ns) {
    m_copies.push_back({instance, ns});
  }
  const std::vector<TCopy>& All() const { return m_copies; }

 private:
  std::vector<TCopy> m_copies;
};

}  // namespace scripted
