// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace NZEPQEL20::cmpi {

/// How many ended objects of a thread keep their memory.
constexpr std::size_t kKeptShells = 2048;

/// What an ended string has for a text.
inline constexpr char kEndedText[1] = {};

/// Takes the memory of an object that has ended, from ::operator new, and frees it when
/// kKeptShells more have ended on the calling thread, or the thread does.
void KeepShell(void* memory) noexcept;

}  // namespace NZEPQEL20::cmpi
