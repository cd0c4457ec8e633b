// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>
#include <set>
#include <vector>

#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20::cmpi {

class TProvider;

/// What was set going by method calls: providers report jobs of their own, too, and those of
/// others, which are nobody's to end.
/// Threads: safe from several.
class TStartedWork {
 public:
  /// Most jobs that are remembered; the oldest are forgotten.
  static constexpr std::size_t kMaxJobs = 1000;

  /// A method of `provider` runs while this lives.
  class TCall {
   public:
    TCall(TStartedWork& work, const TProvider* provider);
    ~TCall();
    TCall(const TCall&) = delete;
    TCall& operator=(const TCall&) = delete;

   private:
    TStartedWork& m_work;
    const TProvider* m_provider;
  };

  void AddJob(const TCIMReference& job);
  std::vector<TCIMReference> GetJobs() const;
  bool IsBusy(const TProvider* provider) const;

 private:
  mutable std::mutex m_mutex;
  std::vector<TCIMReference> m_jobs;
  std::multiset<const TProvider*> m_busy;
};

}  // namespace NZEPQEL20::cmpi
