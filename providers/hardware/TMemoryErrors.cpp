// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TMemoryErrors.h"

#include <string>

#include "providers/hardware/Text.h"

namespace hardware {

TMemoryErrors TMemoryErrors::Read(const THostFiles& files) {
  TMemoryErrors errors;
  for (const std::string& name : files.ListNames("/sys/devices/system/edac/mc")) {
    if (!StartsWith(name, "mc")) continue;
    const std::string controller = "/sys/devices/system/edac/mc/" + name;
    errors.corrected += files.ReadNumber(controller + "/ce_count").value_or(0);
    errors.uncorrected += files.ReadNumber(controller + "/ue_count").value_or(0);
  }
  return errors;
}

void ApplyMemoryErrors(const TMemoryErrors& before, const TMemoryErrors& after, TVerdict& verdict) {
  if (verdict.state != ECompletion::kOk && verdict.state != ECompletion::kWarning) return;
  // A counter that was reset meanwhile shows fewer errors than before: nothing can be said then.
  if (after.uncorrected > before.uncorrected) {
    verdict.state = ECompletion::kFailed;
    verdict.summary += "; but the memory controllers counted " +
                       std::to_string(after.uncorrected - before.uncorrected) +
                       " uncorrected errors meanwhile";
  } else if (after.corrected > before.corrected) {
    verdict.state = ECompletion::kWarning;
    verdict.summary += "; but the memory controllers corrected " +
                       std::to_string(after.corrected - before.corrected) + " errors meanwhile";
  }
}

}  // namespace hardware
