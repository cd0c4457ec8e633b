// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerString.h"

#include <cstring>

#include "platform/cmpi/CodePages.h"
#include "platform/cmpi/TBroker.h"

namespace NZEPQEL20::cmpi {

namespace {

const char* GetCharPtr(const CMPIString* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return TBrokerString::From(self).GetText().c_str(); });
}

/// The text is memory of the broker's, which the provider frees with freeChars().
char* NewCharsCP(const CMPIString* self, const CMPICodepageID page, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const std::vector<char> bytes = ToCodePage(TBrokerString::From(self).GetText(), page);
    TBroker* broker = TBroker::Find(nullptr);
    void* memory = broker == nullptr ? nullptr : broker->Allocate(bytes.size(), 1);
    if (memory == nullptr) throw TBrokerFault(CMPI_RC_ERR_FAILED, "no memory");
    return static_cast<char*>(std::memcpy(memory, bytes.data(), bytes.size()));
  });
}

}  // namespace

const CMPIStringFT TBrokerString::kTable = {kBrokerVersion, Release, Clone, GetCharPtr, NewCharsCP};

}  // namespace NZEPQEL20::cmpi
