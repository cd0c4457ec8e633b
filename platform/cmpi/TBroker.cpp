// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBroker.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <list>
#include <new>
#include <vector>

namespace NZEPQEL20::cmpi {

namespace {

/// The broker of the provider call that runs on a thread, or that the thread is attached to.
thread_local TBroker* currentBroker = nullptr;

/// What a thread was attached with, and its broker before.
struct TAttachment {
  const CMPIContext* context;
  TBroker* before;
};

/// Those of a thread, the innermost at the end.
thread_local std::vector<TAttachment> attachments;

/// Every broker ever made, the one taken last in front.
struct TAllBrokers {
  std::mutex mutex;
  std::list<TBroker*> brokers;
};

TAllBrokers& AllBrokers() {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kAll = new TAllBrokers;
  return *kAll;
}

}  // namespace

TBroker::TBroker()
    : m_table{this, &kBrokerTable, &kBrokerEncTable, &kBrokerExtTable, &kBrokerMemTable} {}

TBroker& TBroker::Take(IBrokerHost& host) {
  TAllBrokers& all = AllBrokers();
  const std::lock_guard<std::mutex> lock(all.mutex);
  auto found = all.brokers.begin();
  for (; found != all.brokers.end(); ++found) {
    const std::lock_guard<std::mutex> brokerLock((*found)->m_mutex);
    if ((*found)->m_host == nullptr && (*found)->m_leases == 0) break;
  }
  if (found == all.brokers.end()) {
    all.brokers.push_front(new TBroker);
  } else {
    all.brokers.splice(all.brokers.begin(), all.brokers, found);
  }
  TBroker& taken = *all.brokers.front();
  const std::lock_guard<std::mutex> brokerLock(taken.m_mutex);
  taken.m_host = &host;
  return taken;
}

void TBroker::Retire() noexcept {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_host = nullptr;
  m_idle.wait(lock, [&] { return m_leases == 0; });
  for (void* memory : m_memory) std::free(memory);
  m_memory.clear();
  for (TBrokerContext* context : m_prepared) delete context;
  m_prepared.clear();
}

TBroker* TBroker::Find(const CMPIBroker* mb) noexcept {
  if (currentBroker != nullptr) return currentBroker;
  TAllBrokers& all = AllBrokers();
  const std::lock_guard<std::mutex> lock(all.mutex);
  for (TBroker* broker : all.brokers) {
    if (mb != nullptr && mb->hdl == broker) return broker;
  }
  for (TBroker* broker : all.brokers) {
    const std::lock_guard<std::mutex> brokerLock(broker->m_mutex);
    if (broker->m_host != nullptr) return broker;
  }
  return nullptr;
}

void* TBroker::Allocate(std::size_t count, std::size_t each) {
  // A sanitizer ends the process over what calloc() itself would only refuse.
  if (each != 0 && count > std::numeric_limits<std::size_t>::max() / each) return nullptr;
  // No bytes would leave it to the C library whether there is a block at all.
  void* memory = std::calloc(std::max<std::size_t>(count, 1), std::max<std::size_t>(each, 1));
  if (memory == nullptr) return nullptr;
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_memory.insert(memory);
  return memory;
}

void* TBroker::Reallocate(void* memory, std::size_t size) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (memory != nullptr && m_memory.erase(memory) == 0) return nullptr;
  // realloc() to no bytes would free the block and answer like a failure.
  void* larger = std::realloc(memory, std::max<std::size_t>(size, 1));
  // What cannot be made larger stays as it is.
  void* kept = larger == nullptr ? memory : larger;
  if (kept != nullptr) m_memory.insert(kept);
  return larger;
}

void TBroker::Free(void* memory) noexcept {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_memory.erase(memory) != 0) std::free(memory);
}

CMPIContext* TBroker::Prepare(const CMPIContext* current) {
  // One that was kept beyond its call is a shell, without entries.
  const bool isAlive = current != nullptr && current->hdl != TBrokerContext::kEndedHandle;
  auto context = isAlive ? TBrokerContext::From(current).Copy()
                         : std::make_unique<TBrokerContext>(TBrokerContext::EntriesFor({}));
  context->SetLifetime(ELifetime::kPassed);
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_prepared.insert(context.get());
  return context.release();
}

bool TBroker::FreePrepared(const CMPIContext* context) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  for (TBrokerContext* prepared : m_prepared) {
    if (static_cast<const CMPIContext*>(prepared) != context) continue;
    m_prepared.erase(prepared);
    delete prepared;
    return true;
  }
  return false;
}

void TBroker::Attach(const CMPIContext* context) {
  // Shells have the table, too.
  if (context == nullptr || context->ft != &TBrokerContext::kTable) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_HANDLE, "not a context of this broker");
  }
  attachments.push_back({context, currentBroker});
  TScope::Open(TScope::EKind::kThread);
  currentBroker = this;
}

void TBroker::Detach(const CMPIContext* context) {
  const bool isAttached = !attachments.empty() && attachments.back().context == context;
  if (!FreePrepared(context) && !isAttached) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_HANDLE,
                       "not a context that the thread is attached with");
  }
  if (TScope::CloseInnermost(TScope::EKind::kThread) && !attachments.empty()) {
    currentBroker = attachments.back().before;
    attachments.pop_back();
  }
}

TCallFrame::TCallFrame(TBroker& broker) : m_before(currentBroker), m_scope(TScope::EKind::kCall) {
  currentBroker = &broker;
}

TCallFrame::~TCallFrame() {
  currentBroker = m_before;
}

}  // namespace NZEPQEL20::cmpi
