// SPDX-License-Identifier: Apache-2.0
// libc's clock, pauses and shell, answered by the script: the names found first at link time win.
#include <unistd.h>

#include <cstdlib>
#include <ctime>

#include "tests/support/TScriptedSystem.h"
#include "tests/support/TTranscript.h"

extern "C" {

// Exported, so that the standard library's own calls come here as well and get the true time.
__attribute__((visibility("default"))) time_t time(time_t* result) noexcept {
  const time_t now = scripted::TScriptedSystem::Get().GetTime();
  if (result != nullptr) {
    *result = now;
  }
  return now;
}

__attribute__((visibility("default"))) double difftime(time_t later, time_t earlier) noexcept {
  return static_cast<double>(later - earlier);
}

__attribute__((visibility("default"))) unsigned int sleep(unsigned int seconds) {
  return scripted::TScriptedSystem::Get().Sleep(seconds);
}

__attribute__((visibility("default"))) int system(const char* command) {
  scripted::TTranscript::Get().Add("system", command == nullptr ? "(null)" : command);
  return 0;
}

}  // extern "C"
