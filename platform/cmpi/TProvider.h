// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

#include "platform/cmpi/TProviderLibrary.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cmpi {

template <class TMI>
class TProviderPart;

/// Function objects that are in use while this lives: their provider is not told to end meanwhile.
template <class TMI>
class TInUse {
 public:
  explicit TInUse(TProviderPart<TMI>& part) : m_part(part) {}
  ~TInUse() { m_part.Leave(); }
  TInUse(const TInUse&) = delete;
  TInUse& operator=(const TInUse&) = delete;

  TMI& operator*() const { return *m_part.m_made; }
  TMI* operator->() const { return m_part.m_made; }

 private:
  TProviderPart<TMI>& m_part;
};

/// Function objects of one kind of a provider: made once, when first needed.
/// Threads: safe from several; no lock is held while the provider makes them.
template <class TMI>
class TProviderPart {
 public:
  /// Errors: TQELException, as TProviderLibrary::Create(), the same each time; also when the
  /// provider comes back here while it makes them, on this thread or by way of another one that
  /// waits for this, and as soon as Cleanup() has begun.
  TInUse<TMI> Get(TProviderLibrary& library, const char* kind, const std::string& providerName,
                  const TCallSite& site, TBroker& broker);

  /// Ends what was made, if anything was, when nothing of it is in use any more. False when
  /// something still is at `deadline`: nothing is called then.
  bool Cleanup(const TCallSite& home, const TCallee& callee, TBroker& broker,
               std::chrono::steady_clock::time_point deadline) noexcept;

 private:
  friend class TInUse<TMI>;

  enum class EState { kNew, kBusy, kReady, kFailed, kEnded };

  bool Begin(const char* kind, const std::string& providerName);
  void Leave() noexcept;
  bool WaitForUsers(std::chrono::steady_clock::time_point deadline);
  /// Whether there is anything to end; there is not any more from then on.
  bool TakeEnded();
  void Finish(EState state);
  [[noreturn]] void Refuse(const char* kind, const std::string& providerName,
                           const char* reason) const;

  std::mutex m_mutex;
  std::condition_variable m_changed;
  EState m_state = EState::kNew;
  bool m_isEnding = false;
  std::size_t m_users = 0;
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
  /// "provider NAME (FILE)" for messages.
  std::string Describe() const { return "provider " + m_name + " (" + m_library.GetPath() + ')'; }

  /// Whom a call of `function` goes to; valid as long as this provider and `function`.
  TCallee GetCallee(const char* function) const {
    return {m_name.c_str(), m_library.GetPath().c_str(), function};
  }

  TInUse<CMPIInstanceMI> GetInstanceMI(TBroker& broker);
  TInUse<CMPIAssociationMI> GetAssociationMI(TBroker& broker);
  TInUse<CMPIMethodMI> GetMethodMI(TBroker& broker);
  TInUse<CMPIPropertyMI> GetPropertyMI(TBroker& broker);

  /// Tells every part that was made that the process ends, one after the other. Each is not called
  /// any more from then on; one with calls under way that have not come back by `deadline` is left
  /// as it is, with a line in the log.
  void Cleanup(TBroker& broker, std::chrono::steady_clock::time_point deadline) noexcept;

 private:
  void LogLeft(const char* kind) const;

  const std::string m_name;
  TProviderLibrary& m_library;
  const TCallSite m_home;
  TProviderPart<CMPIInstanceMI> m_instance;
  TProviderPart<CMPIAssociationMI> m_association;
  TProviderPart<CMPIMethodMI> m_method;
  TProviderPart<CMPIPropertyMI> m_property;
};

}  // namespace NZEPQEL20::cmpi
