// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TProvider.h"

#include <exception>
#include <iterator>
#include <map>

#include "platform/cmpi/ProviderCall.h"
#include "platform/model/CoreLog.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Threads that wait for a part of a provider which another thread makes.
struct TWaits {
  struct TEdge {
    std::thread::id maker;
    const void* part;
  };
  std::mutex mutex;
  std::map<std::thread::id, TEdge> edges;  ///< By who waits.
};

TWaits& Waits() {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kWaits = new TWaits;
  return *kWaits;
}

/// Nobody waits for `part` any more, even where that is not yet noticed.
void EndWaits(const void* part) {
  TWaits& waits = Waits();
  const std::lock_guard<std::mutex> lock(waits.mutex);
  for (auto edge = waits.edges.begin(); edge != waits.edges.end();) {
    edge = edge->second.part == part ? waits.edges.erase(edge) : std::next(edge);
  }
}

/// This thread's waiting for `part`, which `maker` makes.
class TWait {
 public:
  TWait(std::thread::id maker, const void* part) {
    TWaits& waits = Waits();
    const std::lock_guard<std::mutex> lock(waits.mutex);
    for (std::thread::id next = maker;;) {
      m_isEndless = next == std::this_thread::get_id();
      const auto found = waits.edges.find(next);
      if (m_isEndless || found == waits.edges.end()) break;
      next = found->second.maker;
    }
    if (!m_isEndless) waits.edges[std::this_thread::get_id()] = {maker, part};
  }

  /// Whether `maker` waits for this thread, directly or by way of others.
  bool IsEndless() const { return m_isEndless; }

 private:
  bool m_isEndless = false;
};

}  // namespace

template <class TMI>
void TProviderPart<TMI>::Refuse(const char* kind, const std::string& providerName,
                                const char* reason) const {
  throw TQELException(TQELStatusCode::kFailed,
                      "provider " + providerName + ": its " + kind + " functions " + reason);
}

template <class TMI>
bool TProviderPart<TMI>::Begin(const char* kind, const std::string& providerName) {
  std::unique_lock<std::mutex> lock(m_mutex);
  if (m_state == EState::kBusy) {
    const TWait wait(m_maker, this);
    if (wait.IsEndless()) Refuse(kind, providerName, "are needed to make themselves");
    m_changed.wait(lock, [&] { return m_state != EState::kBusy; });
  }
  if (m_isEnding) Refuse(kind, providerName, "have ended");
  if (m_state == EState::kFailed) throw TQELException(m_fault);
  if (m_state == EState::kReady) {
    ++m_users;
    return false;
  }
  m_state = EState::kBusy;
  m_maker = std::this_thread::get_id();
  return true;
}

template <class TMI>
void TProviderPart<TMI>::Finish(EState state) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_state = state;
  // Whoever makes them needs them.
  if (state == EState::kReady) ++m_users;
  EndWaits(this);
  m_changed.notify_all();
}

template <class TMI>
void TProviderPart<TMI>::Leave() noexcept {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (--m_users == 0 && m_isEnding) m_changed.notify_all();
}

template <class TMI>
TInUse<TMI> TProviderPart<TMI>::Get(TProviderLibrary& library, const char* kind,
                                    const std::string& providerName, const TCallSite& site,
                                    TBroker& broker) {
  if (!Begin(kind, providerName)) return TInUse<TMI>(*this);
  try {
    m_made = library.Create<TMI>(kind, providerName, site, broker);
  } catch (const TQELException& failure) {
    m_fault = failure;
    Finish(EState::kFailed);
    throw;
  } catch (...) {
    Finish(EState::kNew);
    throw;
  }
  Finish(EState::kReady);
  return TInUse<TMI>(*this);
}

template <class TMI>
bool TProviderPart<TMI>::WaitForUsers(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_isEnding = true;
  // A provider's thread may be in a call of another provider, or make it, by way of an upcall.
  return m_changed.wait_until(lock, deadline,
                              [&] { return m_users == 0 && m_state != EState::kBusy; });
}

template <class TMI>
bool TProviderPart<TMI>::TakeEnded() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  const bool isMade = m_state == EState::kReady;
  m_state = EState::kEnded;
  return isMade;
}

template <class TMI>
bool TProviderPart<TMI>::Cleanup(const TCallSite& home, const TCallee& callee, TBroker& broker,
                                 std::chrono::steady_clock::time_point deadline) noexcept {
  try {
    if (!WaitForUsers(deadline)) return false;
    if (!TakeEnded() || m_made->ft->cleanup == nullptr) return true;
    const TCallSite site{home.nameSpace, home.parameters, callee};
    // Its answer does not matter: the process ends.
    CallProvider(broker, site, TBrokerResult::EKind::kNothing,
                 [&](const CMPIContext* context, const CMPIResult*) {
                   return m_made->ft->cleanup(m_made, context, 1);
                 });
  } catch (...) {
    // Out of memory: the provider is left as it is.
  }
  return true;
}

template class TProviderPart<CMPIInstanceMI>;
template class TProviderPart<CMPIAssociationMI>;
template class TProviderPart<CMPIMethodMI>;
template class TProviderPart<CMPIPropertyMI>;

TInUse<CMPIInstanceMI> TProvider::GetInstanceMI(TBroker& broker) {
  return m_instance.Get(m_library, "Instance", m_name, m_home, broker);
}

TInUse<CMPIAssociationMI> TProvider::GetAssociationMI(TBroker& broker) {
  return m_association.Get(m_library, "Association", m_name, m_home, broker);
}

TInUse<CMPIMethodMI> TProvider::GetMethodMI(TBroker& broker) {
  return m_method.Get(m_library, "Method", m_name, m_home, broker);
}

TInUse<CMPIPropertyMI> TProvider::GetPropertyMI(TBroker& broker) {
  return m_property.Get(m_library, "Property", m_name, m_home, broker);
}

void TProvider::LogLeft(const char* kind) const {
  LogToCore(ILogger::kWarning, Describe() + " is at work in its " + kind +
                                   " functions at the end; their cleanup is not called; see rule "
                                   "R9");
}

void TProvider::Cleanup(TBroker& broker, std::chrono::steady_clock::time_point deadline) noexcept {
  const TCallee callee = GetCallee("cleanup");
  const auto end = [&](auto& part, const char* kind) {
    if (!part.Cleanup(m_home, callee, broker, deadline)) LogLeft(kind);
  };
  try {
    end(m_instance, "Instance");
    end(m_association, "Association");
    end(m_method, "Method");
    end(m_property, "Property");
  } catch (const std::exception&) {
    // Out of memory for the line: what has not ended by now is left, too.
    return;
  }
}

}  // namespace NZEPQEL20::cmpi
