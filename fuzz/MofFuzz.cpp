// SPDX-License-Identifier: Apache-2.0
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/schema/TClassRepository.h"

/// Any bytes load into a repository that then answers for each of its classes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NZEPQEL20::TClassRepository repository;
  // A folder that does not exist: what the bytes include must not be read from this machine.
  repository.LoadText(std::string(data, data + size), "/nonexistent/fuzz.mof");
  repository.Check();
  for (const std::string& name : repository.GetSubclasses("", true)) {
    if (repository.Find(name) == nullptr || !repository.IsA(name, name)) {
      __builtin_trap();
    }
  }
  repository.GetInstances();
  return 0;
}
