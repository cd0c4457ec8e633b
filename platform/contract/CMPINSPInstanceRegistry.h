// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// Keeps alive the native instances that providers handed out during a run and that nobody else
/// owns. It never answers a fetch.
/// Threads: safe from several.
class DIAGSPLATFORM_EXPORT CMPINSPInstanceRegistry {
 public:
  static CMPINSPInstanceRegistry& GetRegistrySingleton();

  void Register(std::shared_ptr<const void> instance);
  /// Lets every registered instance go.
  void ClearInstances();
  std::size_t GetCount() const;

 private:
  CMPINSPInstanceRegistry() = default;

  mutable std::mutex m_mutex;
  std::vector<std::shared_ptr<const void>> m_instances;
};

}  // namespace NZEPQEL20
