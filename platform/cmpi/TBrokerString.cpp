// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerString.h"

namespace NZEPQEL20::cmpi {

namespace {

const char* GetCharPtr(const CMPIString* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return TBrokerString::From(self).GetText().c_str(); });
}

char* NewCharsCP(const CMPIString* self, const CMPICodepageID, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> char* {
    TBrokerString::From(self);
    throw TBrokerFault(CMPI_RC_ERR_NOT_SUPPORTED, "no code page conversion");
  });
}

}  // namespace

const CMPIStringFT TBrokerString::kTable = {kBrokerVersion, Release, Clone, GetCharPtr, NewCharsCP};

}  // namespace NZEPQEL20::cmpi
