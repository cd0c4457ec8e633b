// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

namespace NZEPQEL20::cmpi {

/// Makes a cancellation point of a broker function that does not let its thread be cancelled
/// within: a provider's thread may do nothing else, time and again, and has to end when it is
/// cancelled. Call() goes into a function table; it is not noexcept, because cancelling unwinds
/// through it.
template <auto function>
struct TCancellationPoint;

template <class TResult, class... TArguments, TResult (*function)(TArguments...) noexcept>
struct TCancellationPoint<function> {
  static TResult Call(TArguments... arguments) {
    const TResult result = function(arguments...);
    // Within a call of a provider the thread is the caller's, and this does nothing.
    pthread_testcancel();
    return result;
  }
};

template <auto function>
constexpr auto kCancellable = &TCancellationPoint<function>::Call;

}  // namespace NZEPQEL20::cmpi
