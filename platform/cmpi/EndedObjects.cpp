// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/EndedObjects.h"

#include <array>
#include <new>

namespace NZEPQEL20::cmpi {

namespace {

/// The shells of a thread, in a ring.
class TShells {
 public:
  TShells() = default;
  ~TShells() {
    for (void* shell : m_ring) ::operator delete(shell);
    isGone = true;
  }
  TShells(const TShells&) = delete;
  TShells& operator=(const TShells&) = delete;

  void Keep(void* memory) noexcept {
    ::operator delete(m_ring[m_next]);
    m_ring[m_next] = memory;
    m_next = (m_next + 1) % m_ring.size();
  }

  /// Objects may end on a thread whose shells have gone already.
  static thread_local bool isGone;

 private:
  std::array<void*, kKeptShells> m_ring{};
  std::size_t m_next = 0;
};

thread_local bool TShells::isGone = false;

}  // namespace

void KeepShell(void* memory) noexcept {
  if (TShells::isGone) {
    ::operator delete(memory);
    return;
  }
  thread_local TShells shells;
  shells.Keep(memory);
}

}  // namespace NZEPQEL20::cmpi
