// SPDX-License-Identifier: Apache-2.0
#include "host/Progress.h"

namespace host {

EOutputTarget ChooseProgressTarget(const TOptions& options, bool isOutTerminal,
                                   bool isErrTerminal) {
  if (options.progress == EProgress::kNever) return EOutputTarget::kNowhere;
  const bool isAlways = options.progress == EProgress::kAlways;
  if (options.isJson) {
    return isAlways || isErrTerminal ? EOutputTarget::kStandardError : EOutputTarget::kNowhere;
  }
  return isAlways || isOutTerminal ? EOutputTarget::kUnchanged : EOutputTarget::kNowhere;
}

}  // namespace host
