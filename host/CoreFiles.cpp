// SPDX-License-Identifier: Apache-2.0
#include "host/CoreFiles.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace host {

void PreventCoreFiles() noexcept {
  // Both: a program that takes core files through a pipe gets them whatever the limit says.
  static_cast<void>(::prctl(PR_SET_DUMPABLE, 0UL, 0UL, 0UL, 0UL));
  const rlimit none{0, 0};
  static_cast<void>(::setrlimit(RLIMIT_CORE, &none));
}

}  // namespace host
