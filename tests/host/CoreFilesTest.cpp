// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <cstdlib>

#include "host/CoreFiles.h"

namespace host {
namespace {

// Bit 0: memory can be dumped; bit 1: there is a limit that lets a core file be.
int GetOpenWays() {
  rlimit limit{};
  ::getrlimit(RLIMIT_CORE, &limit);
  const bool isDumpable = ::prctl(PR_GET_DUMPABLE, 0UL, 0UL, 0UL, 0UL) != 0;
  const bool isAllowed = limit.rlim_cur != 0 || limit.rlim_max != 0;
  return (isDumpable ? 1 : 0) + (isAllowed ? 2 : 0);
}

TEST(CoreFilesTest, NoWayToOneIsLeft) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto prevent = [] {
    if ((GetOpenWays() & 1) == 0) std::exit(100);
    PreventCoreFiles();
    std::exit(GetOpenWays());
  };
  EXPECT_EXIT(prevent(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace host
