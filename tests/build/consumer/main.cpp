// SPDX-License-Identifier: Apache-2.0
// The smallest host: sets the platform up, asks for the tests, prints them.
#include <iostream>

#include "platform/contract/TQELException.h"
#include "platform/setup/TPlatform.h"
#include "runner/DiagsRunner.h"

int main() {
  try {
    const NZEPQEL20::TPlatform platform{NZEPQEL20::TPlatformOptions()};
    std::cout << DiagsRunner::GetDiagsRunner(platform.GetNamespace())->EnumerateDiagTests("")
              << std::endl;
    DiagsRunner::FreeDiagsRunner();
    return 0;
  } catch (const NZEPQEL20::TQELException& e) {
    std::cerr << e.what() << std::endl;
    return 1;
  }
}
