// SPDX-License-Identifier: Apache-2.0
#include "host/TSurroundings.h"

#include <ostream>

#include "host/Text.h"

namespace host {

void TSurroundings::Complain(const std::string& text) const {
  err << "diagsrun: " << SafeText(text, ELines::kOne) << "\n";
}

EExitStatus TSurroundings::CheckOutput(EExitStatus status) const {
  out.flush();
  if (isOutputGood()) return status;
  Complain("standard output: cannot be written to");
  return EExitStatus::kNotFinished;
}

EExitStatus TSurroundings::CheckListing(EExitStatus status) const {
  out.flush();
  return isReaderGone() ? status : CheckOutput(status);
}

}  // namespace host
