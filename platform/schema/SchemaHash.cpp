// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/SchemaHash.h"

#include <cstddef>
#include <cstring>

namespace NZEPQEL20 {

namespace {

// Each step is a bijection of the state, so that a single changed word always shows.
std::uint64_t Mix(std::uint64_t state, std::uint64_t word) {
  state ^= word;
  state *= 0x9E3779B97F4A7C15U;
  return state ^ (state >> 29U);
}

}  // namespace

std::uint64_t HashBytes(std::string_view bytes) {
  std::uint64_t state = 0x243F6A8885A308D3U;
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= bytes.size(); i += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + i, sizeof(word));
    state = Mix(state, word);
  }
  std::uint64_t rest = 0;
  if (i < bytes.size()) {
    std::memcpy(&rest, bytes.data() + i, bytes.size() - i);
  }
  state = Mix(state, rest);
  return Mix(state, bytes.size());
}

}  // namespace NZEPQEL20
