// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderCalls.h"

#include <utility>

#include "platform/cmpi/TCallRecord.h"

namespace NZEPQEL20 {

TProviderCallNames GetOwnProviderCall() noexcept {
  const cmpi::TCallee callee = cmpi::TCallRecord::GetOwn();
  return {callee.provider, callee.library, callee.function};
}

std::vector<TProviderCallUnderWay> GetProviderCalls() {
  std::vector<TProviderCallUnderWay> calls;
  for (cmpi::TCallRecord::TUnderWay& call : cmpi::TCallRecord::GetAll()) {
    calls.push_back(
        {call.number, std::move(call.provider), std::move(call.library), std::move(call.function)});
  }
  return calls;
}

}  // namespace NZEPQEL20
