// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TRootObject.h"

#include <atomic>

namespace NZEPQEL20 {
namespace {

std::atomic<ILogger*> coreLogger{nullptr};

}  // namespace

ILogger* TRootObject::GetCoreLogger() {
  return coreLogger.load(std::memory_order_acquire);
}

void TRootObject::SetCoreLogger(ILogger* logger) {
  coreLogger.store(logger, std::memory_order_release);
}

}  // namespace NZEPQEL20
