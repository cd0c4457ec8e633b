// SPDX-License-Identifier: Apache-2.0
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/cmpi/TRegistrations.h"

namespace {

using namespace NZEPQEL20;

bool IsOneLine(const std::string& text) {
  return text.find_first_of("\r\n") == std::string::npos;
}

void Check(const std::string& text, const char* file) {
  TRegistrations read;
  read.LoadText(text, file);
  if (read.GetEntries().size() > TRegistrations::kMaxEntries) __builtin_trap();
  if (read.GetFindings().size() > TRegistrations::kMaxFindings + 1) __builtin_trap();
  for (const TRegistration& entry : read.GetEntries()) {
    const bool isNamed = !entry.className.empty() && !entry.providerName.empty() &&
                         !entry.nameSpace.empty() && !entry.library.empty();
    if (!isNamed || entry.hasLibrary || entry.nameSpace.back() == '/') __builtin_trap();
  }
  for (const TRegistrationProblem& finding : read.GetFindings()) {
    if (!IsOneLine(finding.ToString()) || finding.rule.empty()) __builtin_trap();
  }
}

}  // namespace

/// Any bytes are entries with all their names, or problems of one line that cite a rule, in each of
/// the forms; which one it is, the content tells.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  // A folder that does not exist: what the bytes include must not be read from this machine.
  Check(text, "/nonexistent/fuzz.registration");
  Check(text, "/nonexistent/fuzz.mof");
  return 0;
}
