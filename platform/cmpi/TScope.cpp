// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TScope.h"

namespace NZEPQEL20::cmpi {

namespace {

/// The innermost scope of a thread.
thread_local TScope* currentScope = nullptr;

/// Ends with the thread what was made on it without the broker's knowledge, and scopes that it
/// was left attached with.
class TThreadScope {
 public:
  TThreadScope() : m_scope(std::make_unique<TScope>(TScope::EKind::kThread)) {}
  ~TThreadScope() { isGone = true; }
  TThreadScope(const TThreadScope&) = delete;
  TThreadScope& operator=(const TThreadScope&) = delete;

  TScope& Get() { return *m_scope; }

  /// Objects may be made on a thread that is ending and has destroyed its scope already.
  static thread_local bool isGone;

 private:
  std::unique_ptr<TScope> m_scope;
};

thread_local bool TThreadScope::isGone = false;

}  // namespace

TBrokerObject::~TBrokerObject() {
  if (m_scope != nullptr) m_scope->Unlink(*this);
}

void TBrokerObject::Release() noexcept {
  if (m_lifetime == ELifetime::kPassed) return;
  if (m_lifetime == ELifetime::kClone) {
    delete this;
    return;
  }
  // A call may take hours, and its provider poll all the while: the memory is needed back at once.
  // The list of another thread's scope is that thread's.
  if (m_scope->IsOfThisThread()) delete this;
}

TScope::TScope(EKind kind) : m_kind(kind), m_outer(currentScope) {
  currentScope = this;
}

TScope::~TScope() {
  CloseInner();
  // An object takes itself out of the list when it dies.
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
  while (m_first != nullptr) delete m_first;
  currentScope = m_outer;
}

TScope& TScope::Current() {
  if (currentScope == nullptr && TThreadScope::isGone) {
    // It stays: nothing runs after this that could end it.
    return *new TScope(EKind::kThread);
  }
  if (currentScope == nullptr) {
    thread_local TThreadScope threadScope;
    currentScope = &threadScope.Get();
  }
  return *currentScope;
}

TScope* TScope::Open(EKind kind) {
  Current();
  auto* scope = new TScope(kind);
  scope->m_isOnHeap = true;
  return scope;
}

bool TScope::Close(const void* scope, EKind kind) noexcept {
  for (TScope* open = currentScope; open != nullptr; open = open->m_outer) {
    if (open == scope && open->m_kind == kind && open->m_isOnHeap) {
      delete open;
      return true;
    }
    if (open->m_kind == EKind::kCall) return false;
  }
  return false;
}

bool TScope::CloseInnermost(EKind kind) noexcept {
  for (TScope* open = currentScope; open != nullptr; open = open->m_outer) {
    if (open->m_kind == kind && open->m_isOnHeap) {
      delete open;
      return true;
    }
    if (open->m_kind == EKind::kCall) return false;
  }
  return false;
}

bool TScope::IsInCall() noexcept {
  for (const TScope* open = currentScope; open != nullptr; open = open->m_outer) {
    if (open->m_kind == EKind::kCall) return true;
  }
  return false;
}

void TScope::Adopt(std::unique_ptr<TBrokerObject> object) noexcept {
  TBrokerObject* adopted = object.release();
  adopted->m_lifetime = ELifetime::kScoped;
  adopted->m_scope = this;
  adopted->m_next = m_first;
  if (m_first != nullptr) m_first->m_previous = adopted;
  m_first = adopted;
}

void TScope::Unlink(TBrokerObject& object) noexcept {
  if (object.m_previous != nullptr) {
    object.m_previous->m_next = object.m_next;
  } else {
    m_first = object.m_next;
  }
  if (object.m_next != nullptr) object.m_next->m_previous = object.m_previous;
}

void TScope::CloseInner() noexcept {
  while (currentScope != this && currentScope != nullptr) {
    TScope* inner = currentScope;
    if (!inner->m_isOnHeap) return;
    delete inner;
  }
}

}  // namespace NZEPQEL20::cmpi
