// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TProviderLibrary.h"

#include <dlfcn.h>

#include <cstring>

#include "platform/cmpi/LibraryLoading.h"
#include "platform/cmpi/TChildSignalWatch.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cmpi {

namespace {

template <class TMI>
using TFactory = TMI* (*)(const CMPIBroker*, const CMPIContext*, CMPIStatus*);
template <class TMI>
using TGenericFactory = TMI* (*)(const CMPIBroker*, const CMPIContext*, const char*, CMPIStatus*);

/// A function behind a symbol's address.
template <class TFunction>
TFunction ToFunction(void* address) {
  TFunction function;
  static_assert(sizeof function == sizeof address);
  std::memcpy(&function, &address, sizeof function);
  return function;
}

}  // namespace

void TProviderLibrary::Open() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (!m_isTried) {
    m_isTried = true;
    // Loading runs code of the library.
    const TChildSignalWatch watch(m_path.c_str());
    const TCallRecord record({nullptr, m_path.c_str(), "dlopen"});
    const TLoadedLibrary loaded = LoadLibrary(m_path, m_folder);
    m_handle = loaded.handle;
    if (!loaded.doubt.empty()) m_doubt = "provider library " + m_path + ' ' + loaded.doubt;
    m_fault = "provider library " + m_path + " cannot be loaded: " + loaded.reason + "; " +
              loaded.remedy + "; see rule " + loaded.rule;
  }
  if (m_handle == nullptr) throw TQELException(TQELStatusCode::kFailed, m_fault);
}

std::string TProviderLibrary::GetDoubt() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_doubt;
}

void* TProviderLibrary::FindSymbol(const std::string& name) const {
  return dlsym(m_handle, name.c_str());
}

template <class TMI>
TMI* TProviderLibrary::Create(const char* kind, const std::string& providerName,
                              const TCallSite& site, TBroker& broker) {
  Open();
  const std::string what =
      "provider " + providerName + " in " + m_path + ": its " + kind + " functions";
  const std::string specific = providerName + "_Create_" + kind + "MI";
  const std::string generic = std::string("_Generic_Create_") + kind + "MI";
  void* own = FindSymbol(specific);
  void* any = own == nullptr ? FindSymbol(generic) : nullptr;
  if (own == nullptr && any == nullptr) {
    // Vendors register more types than a library has. Whoever asks may go another way.
    throw TQELException(TQELStatusCode::kNotSupported,
                        what + " have no entry point: neither " + specific + " nor " + generic +
                            DescribeFactories(m_path) + "; see rule R4",
                        CMPI_RC_ERR_NOT_SUPPORTED);
  }
  const std::string& factory = own != nullptr ? specific : generic;
  const TCallSite called{
      site.nameSpace, site.parameters, {providerName.c_str(), m_path.c_str(), factory.c_str()}};
  TMI* made = nullptr;
  const TCallOutcome outcome = CallProvider(
      broker, called, TBrokerResult::EKind::kNothing,
      [&](const CMPIContext* context, const CMPIResult*) {
        CMPIStatus status = {CMPI_RC_OK, nullptr};
        made = own != nullptr ? ToFunction<TFactory<TMI>>(own)(broker.GetTable(), context, &status)
                              : ToFunction<TGenericFactory<TMI>>(any)(
                                    broker.GetTable(), context, providerName.c_str(), &status);
        return status;
      });
  if (outcome.code != CMPI_RC_OK) {
    const TQELException refusal = outcome.ToException(what + " were refused");
    // Its other codes are about a provider: "not found" must not pass for an object's.
    const bool isMissing = outcome.code == CMPI_RC_ERR_NOT_SUPPORTED;
    throw TQELException(refusal.GetStatusCode(), std::string(refusal.what()) + "; see rule R4",
                        isMissing ? refusal.GetCIMStatus() : unsigned{CMPI_RC_ERR_FAILED});
  }
  if (made == nullptr) {
    throw TQELException(TQELStatusCode::kFailed, what + " were not made; see rule R4");
  }
  if (made->ft == nullptr) {
    throw TQELException(TQELStatusCode::kFailed, what + " have no function table; see rule R4");
  }
  return made;
}

template CMPIInstanceMI* TProviderLibrary::Create(const char*, const std::string&, const TCallSite&,
                                                  TBroker&);
template CMPIAssociationMI* TProviderLibrary::Create(const char*, const std::string&,
                                                     const TCallSite&, TBroker&);
template CMPIMethodMI* TProviderLibrary::Create(const char*, const std::string&, const TCallSite&,
                                                TBroker&);
template CMPIPropertyMI* TProviderLibrary::Create(const char*, const std::string&, const TCallSite&,
                                                  TBroker&);

}  // namespace NZEPQEL20::cmpi
