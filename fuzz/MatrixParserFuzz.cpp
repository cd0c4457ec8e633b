// SPDX-License-Identifier: Apache-2.0
// Any bytes end in a matrix; reading them twice gives the same one.
#include <cstddef>
#include <cstdint>
#include <string>

#include "parsers/MatrixParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document(reinterpret_cast<const char*>(data), size);
  MatrixParser terminated;
  terminated.Parse(document.data());
  MatrixParser bounded;
  bounded.Parse(document.data(), document.size());
  if (terminated.getDiagnosticMatrix() != bounded.getDiagnosticMatrix()) __builtin_trap();
  return 0;
}
