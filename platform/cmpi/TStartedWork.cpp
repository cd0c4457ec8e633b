// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TStartedWork.h"

#include <algorithm>

namespace NZEPQEL20::cmpi {

TStartedWork::TCall::TCall(TStartedWork& work, const TProvider* provider)
    : m_work(work), m_provider(provider) {
  const std::lock_guard<std::mutex> lock(m_work.m_mutex);
  m_work.m_busy.insert(m_provider);
}

TStartedWork::TCall::~TCall() {
  const std::lock_guard<std::mutex> lock(m_work.m_mutex);
  m_work.m_busy.erase(m_work.m_busy.find(m_provider));
}

void TStartedWork::AddJob(const TCIMReference& job) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (std::find(m_jobs.begin(), m_jobs.end(), job) != m_jobs.end()) return;
  if (m_jobs.size() == kMaxJobs) m_jobs.erase(m_jobs.begin());
  m_jobs.push_back(job);
}

std::vector<TCIMReference> TStartedWork::GetJobs() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_jobs;
}

bool TStartedWork::IsBusy(const TProvider* provider) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_busy.count(provider) != 0;
}

}  // namespace NZEPQEL20::cmpi
