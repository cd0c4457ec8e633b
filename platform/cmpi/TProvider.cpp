// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TProvider.h"

#include "platform/cmpi/ProviderCall.h"

namespace NZEPQEL20::cmpi {

template <class TMI>
bool TProviderPart<TMI>::Begin(const char* kind, const std::string& providerName) {
  std::unique_lock<std::mutex> lock(m_mutex);
  if (m_state == EState::kBusy && m_maker == std::this_thread::get_id()) {
    throw TQELException(TQELStatusCode::kFailed, "provider " + providerName + ": its " + kind +
                                                     " functions are needed to make themselves");
  }
  m_changed.wait(lock, [&] { return m_state != EState::kBusy; });
  if (m_state == EState::kFailed) throw TQELException(m_fault);
  if (m_state == EState::kReady) return false;
  m_state = EState::kBusy;
  m_maker = std::this_thread::get_id();
  return true;
}

template <class TMI>
void TProviderPart<TMI>::Finish(EState state) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_state = state;
  m_changed.notify_all();
}

template <class TMI>
TMI& TProviderPart<TMI>::Get(TProviderLibrary& library, const char* kind,
                             const std::string& providerName, const TCallSite& site,
                             TBroker& broker) {
  if (!Begin(kind, providerName)) return *m_made;
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
  return *m_made;
}

template <class TMI>
void TProviderPart<TMI>::Cleanup(const TCallSite& site, TBroker& broker) noexcept {
  try {
    if (m_state != EState::kReady || m_made->ft->cleanup == nullptr) return;
    // Its answer does not matter: the process ends.
    CallProvider(broker, site, TBrokerResult::EKind::kNothing,
                 [&](const CMPIContext* context, const CMPIResult*) {
                   return m_made->ft->cleanup(m_made, context, 1);
                 });
    m_state = EState::kNew;
  } catch (...) {
    // Out of memory: the provider is left as it is.
    return;
  }
}

CMPIInstanceMI& TProvider::GetInstanceMI(TBroker& broker) {
  return m_instance.Get(m_library, "Instance", m_name, m_home, broker);
}

CMPIAssociationMI& TProvider::GetAssociationMI(TBroker& broker) {
  return m_association.Get(m_library, "Association", m_name, m_home, broker);
}

CMPIMethodMI& TProvider::GetMethodMI(TBroker& broker) {
  return m_method.Get(m_library, "Method", m_name, m_home, broker);
}

CMPIPropertyMI& TProvider::GetPropertyMI(TBroker& broker) {
  return m_property.Get(m_library, "Property", m_name, m_home, broker);
}

void TProvider::Cleanup(TBroker& broker) noexcept {
  m_instance.Cleanup(m_home, broker);
  m_association.Cleanup(m_home, broker);
  m_method.Cleanup(m_home, broker);
  m_property.Cleanup(m_home, broker);
}

}  // namespace NZEPQEL20::cmpi
