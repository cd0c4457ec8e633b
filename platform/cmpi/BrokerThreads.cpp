// SPDX-License-Identifier: Apache-2.0
// The function table of threads, mutexes and conditions: POSIX's own behind opaque pointers.
#include <cxxabi.h>
#include <pthread.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <string>

#include "platform/cmpi/TBroker.h"

namespace NZEPQEL20::cmpi {

namespace {

static_assert(sizeof(pthread_t) == sizeof(CMPI_THREAD_TYPE));
static_assert(sizeof(pthread_key_t) == sizeof(CMPI_THREAD_KEY_TYPE));
static_assert(sizeof(pthread_once_t) == sizeof(int) && PTHREAD_ONCE_INIT == 0);

pthread_t ToThread(CMPI_THREAD_TYPE thread) {
  pthread_t converted;
  std::memcpy(&converted, &thread, sizeof converted);
  return converted;
}

struct TThreadStart {
  CMPIThreadFunc function;
  void* argument;
};

/// Runs a provider's thread. Its exception must not end the process; exiting and cancelling a
/// thread look like exceptions here and have to go on; they come without an exception object, which
/// the sanitizer takes for a null reference.
__attribute__((no_sanitize("null"))) void* RunThread(void* start) {
  const TThreadStart job = *std::unique_ptr<TThreadStart>(static_cast<TThreadStart*>(start));
  try {
    return job.function(job.argument);
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return nullptr;
  }
}

char* ResolveFileName(const char* library) noexcept {
  if (library == nullptr) return nullptr;
  try {
    return strdup(("lib" + std::string(library) + ".so").c_str());
  } catch (...) {
    return nullptr;
  }
}

CMPI_THREAD_TYPE NewThread(CMPIThreadFunc function, void* argument, int detached) noexcept {
  if (function == nullptr) return nullptr;
  std::unique_ptr<TThreadStart> start(new (std::nothrow) TThreadStart{function, argument});
  pthread_t thread = {};
  pthread_attr_t attributes;
  if (start == nullptr || pthread_attr_init(&attributes) != 0) return nullptr;
  pthread_attr_setdetachstate(&attributes,
                              detached != 0 ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
  const int failure = pthread_create(&thread, &attributes, RunThread, start.get());
  pthread_attr_destroy(&attributes);
  if (failure != 0) return nullptr;
  static_cast<void>(start.release());
  CMPI_THREAD_TYPE handle;
  std::memcpy(&handle, &thread, sizeof handle);
  return handle;
}

/// Not noexcept, like all that wait here: a thread that waits may be cancelled, which unwinds its
/// stack through here.
int JoinThread(CMPI_THREAD_TYPE thread, CMPI_THREAD_RETURN* result) {
  return thread == nullptr ? EINVAL : pthread_join(ToThread(thread), result);
}

/// Not noexcept: ending a thread unwinds its stack through here. A thread that runs a provider call
/// is the host's; there the call ends with a failure instead.
int ExitThread(CMPI_THREAD_RETURN result) {
  if (TScope::IsInCall()) {
    throw TBrokerFault(CMPI_RC_ERR_FAILED, "a provider call cannot end its thread");
  }
  pthread_exit(result);
}

int CancelThread(CMPI_THREAD_TYPE thread) noexcept {
  return thread == nullptr ? EINVAL : pthread_cancel(ToThread(thread));
}

int ThreadSleep(CMPIUint32 milliseconds) {
  std::timespec left = {static_cast<std::time_t>(milliseconds / 1000),
                        static_cast<long>(milliseconds % 1000) * 1000000L};
  int failure = 0;
  do {
    failure = clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left);
  } while (failure == EINTR);
  return failure;
}

int ThreadOnce(int* flag, CMPIThreadOnceFunc function) {
  if (flag == nullptr || function == nullptr) return EINVAL;
  return pthread_once(reinterpret_cast<pthread_once_t*>(flag), function);
}

int CreateThreadKey(CMPI_THREAD_KEY_TYPE* key, CMPIThreadKeyCleanupFunc cleanup) noexcept {
  return key == nullptr ? EINVAL : pthread_key_create(key, cleanup);
}

int DestroyThreadKey(CMPI_THREAD_KEY_TYPE key) noexcept {
  return pthread_key_delete(key);
}

void* GetThreadSpecific(CMPI_THREAD_KEY_TYPE key) noexcept {
  return pthread_getspecific(key);
}

int SetThreadSpecific(CMPI_THREAD_KEY_TYPE key, void* value) noexcept {
  return pthread_setspecific(key, value);
}

pthread_mutex_t* ToMutex(CMPI_MUTEX_TYPE mutex) {
  return static_cast<pthread_mutex_t*>(mutex);
}
pthread_cond_t* ToCondition(CMPI_COND_TYPE condition) {
  return static_cast<pthread_cond_t*>(condition);
}

CMPI_MUTEX_TYPE NewMutex(int) noexcept {
  auto* mutex = new (std::nothrow) pthread_mutex_t;
  if (mutex == nullptr) return nullptr;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  return mutex;
}

int DestroyMutex2(CMPI_MUTEX_TYPE mutex) noexcept {
  if (mutex == nullptr) return EINVAL;
  const int failure = pthread_mutex_destroy(ToMutex(mutex));
  if (failure == 0) delete ToMutex(mutex);
  return failure;
}

int LockMutex2(CMPI_MUTEX_TYPE mutex) noexcept {
  return mutex == nullptr ? EINVAL : pthread_mutex_lock(ToMutex(mutex));
}

int UnlockMutex2(CMPI_MUTEX_TYPE mutex) noexcept {
  return mutex == nullptr ? EINVAL : pthread_mutex_unlock(ToMutex(mutex));
}

void DestroyMutex(CMPI_MUTEX_TYPE mutex) noexcept {
  DestroyMutex2(mutex);
}
void LockMutex(CMPI_MUTEX_TYPE mutex) noexcept {
  LockMutex2(mutex);
}
void UnlockMutex(CMPI_MUTEX_TYPE mutex) noexcept {
  UnlockMutex2(mutex);
}

CMPI_COND_TYPE NewCondition(int) noexcept {
  auto* condition = new (std::nothrow) pthread_cond_t;
  if (condition != nullptr) pthread_cond_init(condition, nullptr);
  return condition;
}

int DestroyCondition2(CMPI_COND_TYPE condition) noexcept {
  if (condition == nullptr) return EINVAL;
  const int failure = pthread_cond_destroy(ToCondition(condition));
  if (failure == 0) delete ToCondition(condition);
  return failure;
}

void DestroyCondition(CMPI_COND_TYPE condition) noexcept {
  DestroyCondition2(condition);
}

int CondWait(CMPI_COND_TYPE condition, CMPI_MUTEX_TYPE mutex) {
  if (condition == nullptr || mutex == nullptr) return EINVAL;
  return pthread_cond_wait(ToCondition(condition), ToMutex(mutex));
}

int TimedCondWait(CMPI_COND_TYPE condition, CMPI_MUTEX_TYPE mutex, timespec* deadline) {
  if (condition == nullptr || mutex == nullptr || deadline == nullptr) return EINVAL;
  return pthread_cond_timedwait(ToCondition(condition), ToMutex(mutex), deadline);
}

int SignalCondition(CMPI_COND_TYPE condition) noexcept {
  return condition == nullptr ? EINVAL : pthread_cond_signal(ToCondition(condition));
}

}  // namespace

const CMPIBrokerExtFT kBrokerExtTable = {
    kBrokerVersion,    ResolveFileName,   NewThread,        JoinThread,      ExitThread,
    CancelThread,      ThreadSleep,       ThreadOnce,       CreateThreadKey, DestroyThreadKey,
    GetThreadSpecific, SetThreadSpecific, NewMutex,         DestroyMutex,    LockMutex,
    UnlockMutex,       NewCondition,      DestroyCondition, CondWait,        TimedCondWait,
    SignalCondition,   DestroyMutex2,     LockMutex2,       UnlockMutex2,    DestroyCondition2};

}  // namespace NZEPQEL20::cmpi
