// SPDX-License-Identifier: Apache-2.0
// The function table of memory that the broker looks after.
#include <cstring>

#include "platform/cmpi/TBroker.h"
#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/TBrokerDateTime.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerSelectExp.h"
#include "platform/cmpi/TBrokerString.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIGcStat* Mark(const CMPIBroker*, CMPIStatus* rc) noexcept {
  return Answer(rc, []() -> CMPIGcStat* { return TScope::Open(TScope::EKind::kMark); });
}

CMPIStatus ReleaseMark(const CMPIBroker*, const CMPIGcStat* level) noexcept {
  const bool isClosed = TScope::Close(level, TScope::EKind::kMark);
  return {isClosed ? CMPI_RC_OK : CMPI_RC_ERR_INVALID_HANDLE, nullptr};
}

void* Calloc(const CMPIBroker* mb, std::size_t count, std::size_t each) noexcept {
  return Answer(nullptr, [&]() -> void* {
    TBroker* broker = TBroker::Find(mb);
    return broker == nullptr ? nullptr : broker->Allocate(count, each);
  });
}

void* Malloc(const CMPIBroker* mb, std::size_t size) noexcept {
  return Calloc(mb, 1, size);
}

void* Realloc(const CMPIBroker* mb, void* memory, std::size_t size) noexcept {
  return Answer(nullptr, [&]() -> void* {
    TBroker* broker = TBroker::Find(mb);
    return broker == nullptr ? nullptr : broker->Reallocate(memory, size);
  });
}

char* StrDup(const CMPIBroker* mb, const char* text) noexcept {
  if (text == nullptr) return nullptr;
  const std::size_t size = std::strlen(text) + 1;
  void* copy = Malloc(mb, size);
  return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

void Free(const CMPIBroker* mb, void* memory) noexcept {
  TBroker* broker = TBroker::Find(mb);
  if (broker != nullptr && memory != nullptr) broker->Free(memory);
}

template <class TObject, class TCMPI>
void FreeObject(const CMPIBroker*, TCMPI* object) noexcept {
  TObject::Release(object);
}

void FreeChars(const CMPIBroker* mb, char* text) noexcept {
  Free(mb, text);
}

}  // namespace

const CMPIBrokerMemFT kBrokerMemTable = {kBrokerVersion,
                                         Mark,
                                         ReleaseMark,
                                         Malloc,
                                         Calloc,
                                         Realloc,
                                         StrDup,
                                         Free,
                                         FreeObject<TBrokerInstance, CMPIInstance>,
                                         FreeObject<TBrokerPath, CMPIObjectPath>,
                                         FreeObject<TBrokerArgs, CMPIArgs>,
                                         FreeObject<TBrokerString, CMPIString>,
                                         FreeObject<TBrokerArray, CMPIArray>,
                                         FreeObject<TBrokerDateTime, CMPIDateTime>,
                                         FreeObject<TBrokerSelectExp, CMPISelectExp>,
                                         FreeChars};

}  // namespace NZEPQEL20::cmpi
