// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TAllocationFault.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// 0: nothing fails.
std::atomic<std::size_t> failingSize{0};
std::atomic<bool> hasStruck{false};

bool IsToFail(std::size_t bytes) {
  std::size_t limit = failingSize.load();
  if (limit == 0 || bytes < limit || !failingSize.compare_exchange_strong(limit, 0)) {
    return false;
  }
  hasStruck = true;
  return true;
}

void* Allocate(std::size_t bytes) {
  return IsToFail(bytes) ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}

}  // namespace

void* operator new[](std::size_t bytes) {
  void* memory = Allocate(bytes);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(bytes);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*bytes*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
  std::free(memory);
}

namespace scripted {

TAllocationFault::TAllocationFault(std::size_t minBytes) {
  hasStruck = false;
  failingSize = minBytes;
}

TAllocationFault::~TAllocationFault() {
  failingSize = 0;
}

bool TAllocationFault::HasStruck() const {
  return hasStruck;
}

}  // namespace scripted
