// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/UserName.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/cmpi/Border.h"

namespace NZEPQEL20::cmpi {

namespace {

/// What is known of the user of the last call.
struct TKnownUser {
  std::mutex mutex;
  std::optional<uid_t> user;
  std::string name;
};

TKnownUser& GetKnown() {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kKnown = new TKnownUser;
  return *kKnown;
}

}  // namespace

std::string FindUserName(uid_t user) {
  constexpr std::size_t kFirstSize = 1024;
  constexpr std::size_t kMaxSize = std::size_t{1} << 20U;
  for (std::size_t size = kFirstSize; size <= kMaxSize; size *= 2) {
    std::vector<char> buffer(size);
    passwd entry = {};
    passwd* found = nullptr;
    const int failure = ::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
    if (failure == ERANGE) continue;
    const bool isNamed = failure == 0 && found != nullptr && *found->pw_name != '\0';
    if (isNamed) return ToUtf8(found->pw_name);
    break;
  }
  return std::to_string(user);
}

std::string GetEffectiveUserName() {
  const uid_t user = ::geteuid();
  TKnownUser& known = GetKnown();
  {
    const std::lock_guard<std::mutex> lock(known.mutex);
    if (known.user == user) return known.name;
  }
  // Not under the lock: a directory service may take its time.
  std::string name = FindUserName(user);
  const std::lock_guard<std::mutex> lock(known.mutex);
  known.user = user;
  known.name = name;
  return name;
}

}  // namespace NZEPQEL20::cmpi
