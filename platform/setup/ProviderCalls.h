// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// Whom a thread has called. The texts stay valid until that call ends.
struct TProviderCallNames {
  const char* provider;  ///< NULL outside of calls, and while a library is being loaded.
  const char* library;   ///< Its path; NULL outside of calls.
  const char* function;  ///< As CMPI names it, the factory, or "dlopen"; NULL outside of calls.
};

/// The innermost call to a provider library that this thread is in.
/// Threads: any, also in a handler of signals.
DIAGSPLATFORM_EXPORT TProviderCallNames GetOwnProviderCall() noexcept;

/// A call to a provider library that has not come back.
struct TProviderCallUnderWay {
  std::uint64_t number;  ///< No other call of the process has it.
  std::string provider;  ///< Empty while a library is being loaded.
  std::string library;
  std::string function;
};

/// Those of all threads, in the order of their beginning: a call within another one is behind it.
/// Threads: any.
DIAGSPLATFORM_EXPORT std::vector<TProviderCallUnderWay> GetProviderCalls();

}  // namespace NZEPQEL20
