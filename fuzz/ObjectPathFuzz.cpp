// SPDX-License-Identifier: Apache-2.0
// Any bytes end in a path or an error; a path that was read prints to a text that reads the same.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace {

bool Read(const std::string& text, NZEPQEL20::TCIMReference& path) {
  try {
    path = NZEPQEL20::TCIMReference::Parse(text);
    return true;
  } catch (const NZEPQEL20::TQELException&) {
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NZEPQEL20::TCIMReference path;
  if (!Read(std::string(reinterpret_cast<const char*>(data), size), path)) return 0;
  const std::string printed = path.GetPath();
  NZEPQEL20::TCIMReference again;
  if (!Read(printed, again) || again.GetPath() != printed) __builtin_trap();
  return 0;
}
