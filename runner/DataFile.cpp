// SPDX-License-Identifier: Apache-2.0
#include "runner/DataFile.h"

#include <cstdio>
#include <new>

#include "platform/contract/TQELException.h"

namespace runner {

std::unique_ptr<char[]> AllocateZeroed(std::size_t sizeBytes) noexcept {
  return std::unique_ptr<char[]>(new (std::nothrow) char[sizeBytes]());
}

bool ReadFile(const std::string& path, char* buffer, std::size_t sizeBytes) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "r"),
                                                             &std::fclose);
  if (!file) return false;
  // A short read is no error: what is missing stays zero, and the parser reports what that does.
  const std::size_t readBytes = std::fread(buffer, 1, sizeBytes, file.get());
  static_cast<void>(readBytes);
  return true;
}

void ThrowNoMemory(const std::string& path) {
  throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kNoMemory,
                                 path + ": no memory for the file's text");
}

}  // namespace runner
