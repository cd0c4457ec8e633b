// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedCopies.h"

namespace scripted {

TScriptedCopies& TScriptedCopies::Get() {
  static TScriptedCopies copies;
  return copies;
}

}  // namespace scripted
