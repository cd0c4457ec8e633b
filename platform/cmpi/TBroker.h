// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_set>

#include "platform/cmpi/IBrokerHost.h"
#include "platform/cmpi/TBrokerContext.h"
#include "platform/cmpi/abi/cmpi.h"

namespace NZEPQEL20::cmpi {

extern const CMPIBrokerFT kBrokerTable;
extern const CMPIBrokerEncFT kBrokerEncTable;
extern const CMPIBrokerExtFT kBrokerExtTable;
extern const CMPIBrokerMemFT kBrokerMemTable;

/// A broker as providers know it.
///
/// Providers keep its address in their statics and may have threads that outlive everything, so
/// the memory of a broker is never given back; a retired one refuses requests and is taken up
/// again by the next host.
/// Threads: safe from several.
class TBroker {
 public:
  /// A broker that serves `host`, which must outlive the call to Retire().
  static TBroker& Take(IBrokerHost& host);
  /// Ends the service; waits for requests of provider threads that are on their way.
  void Retire() noexcept;

  /// The broker for a request: that of the running call, else the one that `mb` names, else the
  /// latest one that serves a host. `mb` may be NULL, or a provider's copy.
  static TBroker* Find(const CMPIBroker* mb) noexcept;

  const CMPIBroker* GetTable() const { return &m_table; }

  /// Memory that providers get from malloc's like; freed at the latest when the broker retires.
  void* Allocate(std::size_t count, std::size_t each);
  void* Reallocate(void* memory, std::size_t size);
  void Free(void* memory) noexcept;

  /// A context for a thread to come; detaching frees it, at the latest retiring does. Its entries
  /// are those of `current`, or the usual ones when that is NULL or has ended with its call.
  CMPIContext* Prepare(const CMPIContext* current);
  /// Makes the broker that of the calling thread. Any context will do, because providers skip
  /// Prepare(): one that they cloned, or have kept since they were made.
  void Attach(const CMPIContext* context);
  /// Ends the objects of the thread, and frees `context` if it is of Prepare(). Any other one is
  /// refused unless the thread was attached with it, and so is one that is detached already.
  void Detach(const CMPIContext* context);

 private:
  friend class THostLease;
  friend class TCallFrame;

  TBroker();
  /// Whether `context` was one of Prepare() and has gone now.
  bool FreePrepared(const CMPIContext* context);

  CMPIBroker m_table;
  std::mutex m_mutex;
  std::condition_variable m_idle;
  IBrokerHost* m_host = nullptr;
  std::size_t m_leases = 0;
  std::unordered_set<void*> m_memory;
  std::set<TBrokerContext*> m_prepared;
};

/// Makes a broker that of the calling thread for one provider call, with a scope of its own.
class TCallFrame {
 public:
  explicit TCallFrame(TBroker& broker);
  ~TCallFrame();
  TCallFrame(const TCallFrame&) = delete;
  TCallFrame& operator=(const TCallFrame&) = delete;

 private:
  TBroker* m_before;
  TScope m_scope;
};

}  // namespace NZEPQEL20::cmpi
