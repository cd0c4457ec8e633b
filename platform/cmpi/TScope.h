// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace NZEPQEL20::cmpi {

class TScope;

/// Who ends an object's life.
enum class ELifetime {
  kScoped,  ///< The scope that it was made in; an early release is allowed.
  kClone,   ///< The provider, by release().
  kPassed   ///< The broker itself; release() does nothing.
};

/// What every object that the broker hands to providers has behind the two members they know.
class TBrokerObject {
 public:
  TBrokerObject() = default;
  virtual ~TBrokerObject();
  TBrokerObject(const TBrokerObject&) = delete;
  TBrokerObject& operator=(const TBrokerObject&) = delete;

  /// The content as text for people.
  virtual std::string Describe() const = 0;

  /// Ends the object as far as its lifetime allows. For a while, a second release of it meets a
  /// shell that refuses.
  /// Threads: from another thread than the scope's, the object stays until the scope ends.
  void Release() noexcept;

  void SetLifetime(ELifetime lifetime) { m_lifetime = lifetime; }

 private:
  friend class TScope;

  ELifetime m_lifetime = ELifetime::kClone;
  TScope* m_scope = nullptr;
  TBrokerObject* m_previous = nullptr;
  TBrokerObject* m_next = nullptr;
};

/// Owns the objects made on one thread during one provider call, between a memory mark and its
/// release, or while a thread is attached.
///
/// Scopes of a thread nest: constructing one makes it the current one of the calling thread,
/// destroying it gives way to the one before. A thread without any gets one for its lifetime, so
/// that objects can be made anywhere.
class TScope {
 public:
  enum class EKind {
    kCall,    ///< A provider function runs.
    kMark,    ///< Opened by a provider's memory mark.
    kThread,  ///< A thread attached by a provider, or one that nobody told the broker of.
  };

  explicit TScope(EKind kind);
  /// Also ends what was left open inside of it.
  ~TScope();
  TScope(const TScope&) = delete;
  TScope& operator=(const TScope&) = delete;

  /// The innermost scope of the calling thread.
  static TScope& Current();

  /// Opens a scope of `kind` on the heap inside the current one.
  static TScope* Open(EKind kind);
  /// Ends `scope` and all inside of it, if it is an open one of `kind` on this thread that no
  /// provider call separates from the current one.
  static bool Close(const void* scope, EKind kind) noexcept;
  /// Ends the innermost scope of `kind` under the same condition.
  static bool CloseInnermost(EKind kind) noexcept;

  /// Whether a provider call runs on this thread.
  static bool IsInCall() noexcept;

  void Adopt(std::unique_ptr<TBrokerObject> object) noexcept;
  bool IsOfThisThread() const { return m_thread == std::this_thread::get_id(); }

 private:
  friend class TBrokerObject;

  void Unlink(TBrokerObject& object) noexcept;
  void CloseInner() noexcept;

  EKind m_kind;
  std::thread::id m_thread = std::this_thread::get_id();
  bool m_isOnHeap = false;
  TScope* m_outer;
  TBrokerObject* m_first = nullptr;
};

/// Makes an object that the current scope owns.
template <class TObject, class... TArguments>
TObject* Make(TArguments&&... arguments) {
  auto object = std::make_unique<TObject>(std::forward<TArguments>(arguments)...);
  TObject* made = object.get();
  TScope::Current().Adopt(std::move(object));
  return made;
}

/// An object that the broker hands to a provider function and ends itself: a release of it does
/// nothing. On the heap, because an ended object leaves a shell there.
template <class TObject>
class TPassed {
 public:
  template <class... TArguments>
  explicit TPassed(TArguments&&... arguments)
      : m_object(std::make_unique<TObject>(std::forward<TArguments>(arguments)...)) {
    m_object->SetLifetime(ELifetime::kPassed);
  }

  TObject* Get() const { return m_object.get(); }

 private:
  std::unique_ptr<TObject> m_object;
};

}  // namespace NZEPQEL20::cmpi
