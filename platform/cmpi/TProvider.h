// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "platform/cmpi/TProviderLibrary.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cmpi {

/// Function objects of one kind of a provider: made once, when first needed.
/// Threads: safe from several; no lock is held while the provider makes them.
template <class TMI>
class TProviderPart {
 public:
  /// Errors: TQELException, as TProviderLibrary::Create(), the same each time; also when the
  /// provider comes back here while it makes them, on this thread or by way of another one that
  /// waits for this, and after Cleanup().
  TMI& Get(TProviderLibrary& library, const char* kind, const std::string& providerName,
           const TCallSite& site, TBroker& broker);

  /// Ends what was made, if anything was.
  void Cleanup(const TCallSite& home, const TCallee& callee, TBroker& broker) noexcept;

 private:
  enum class EState { kNew, kBusy, kReady, kFailed, kEnded };

  bool Begin(const char* kind, const std::string& providerName);
  void Finish(EState state);
  [[noreturn]] void Refuse(const char* kind, const std::string& providerName,
                           const char* reason) const;

  std::mutex m_mutex;
  std::condition_variable m_changed;
  EState m_state = EState::kNew;
  std::thread::id m_maker;
  TMI* m_made = nullptr;
  TQELException m_fault{TQELStatusCode::kFailed, ""};
};

/// A provider: one name in one library.
class TProvider {
 public:
  /// `home` is what it learns when it is made and when it ends.
  TProvider(std::string name, TProviderLibrary& library, TCallSite home)
      : m_name(std::move(name)), m_library(library), m_home(std::move(home)) {}

  const std::string& GetName() const { return m_name; }
  TProviderLibrary& GetLibrary() const { return m_library; }
  /// "provider NAME (FILE)" for messages.
  std::string Describe() const { return "provider " + m_name + " (" + m_library.GetPath() + ')'; }

  /// Whom a call of `function` goes to; valid as long as this provider and `function`.
  TCallee GetCallee(const char* function) const {
    return {m_name.c_str(), m_library.GetPath().c_str(), function};
  }

  CMPIInstanceMI& GetInstanceMI(TBroker& broker);
  CMPIAssociationMI& GetAssociationMI(TBroker& broker);
  CMPIMethodMI& GetMethodMI(TBroker& broker);
  CMPIPropertyMI& GetPropertyMI(TBroker& broker);

  /// Tells every part that was made that the process ends.
  void Cleanup(TBroker& broker) noexcept;

 private:
  const std::string m_name;
  TProviderLibrary& m_library;
  const TCallSite m_home;
  TProviderPart<CMPIInstanceMI> m_instance;
  TProviderPart<CMPIAssociationMI> m_association;
  TProviderPart<CMPIMethodMI> m_method;
  TProviderPart<CMPIPropertyMI> m_property;
};

}  // namespace NZEPQEL20::cmpi
