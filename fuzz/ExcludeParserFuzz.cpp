// SPDX-License-Identifier: Apache-2.0
// Any bytes end in a list of names and reports, whether or not a NUL ends them.
#include <cstddef>
#include <cstdint>
#include <string>

#include "parsers/ExcludeParser.h"
#include "platform/contract/TRootObject.h"

namespace {

class TSilentLogger final : public NZEPQEL20::ILogger {
 public:
  void Log(EQELLogSeverity severity, const std::string& text) override {
    if (severity != kError || text.empty()) __builtin_trap();
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static TSilentLogger logger;
  NZEPQEL20::TRootObject::SetCoreLogger(&logger);

  std::string document(reinterpret_cast<const char*>(data), size);
  ExcludeParser terminated;
  terminated.Parse(document.data());
  ExcludeParser bounded;
  bounded.Parse(document.data(), document.size());
  if (terminated.GetRequestedData() != bounded.GetRequestedData()) __builtin_trap();
  return 0;
}
