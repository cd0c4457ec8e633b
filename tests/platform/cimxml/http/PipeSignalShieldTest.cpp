// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>

#include "platform/cimxml/TConnectionPool.h"

namespace NZEPQEL20::cimxml {
namespace {

bool IsBlocked() {
  sigset_t mask;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, SIGPIPE) == 1;
}

bool IsPending() {
  sigset_t pending;
  ::sigpending(&pending);
  return sigismember(&pending, SIGPIPE) == 1;
}

TEST(PipeSignalShieldTest, SwallowsWhatIsRaisedBehindIt) {
  ASSERT_FALSE(IsBlocked());
  {
    const TPipeSignalShield shield;
    ::pthread_kill(::pthread_self(), SIGPIPE);
  }
  EXPECT_FALSE(IsBlocked());
  EXPECT_FALSE(IsPending());
}

TEST(PipeSignalShieldTest, LeavesWhatWasThereBefore) {
  sigset_t mask;
  sigset_t before;
  sigemptyset(&mask);
  sigaddset(&mask, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &mask, &before);
  ::pthread_kill(::pthread_self(), SIGPIPE);
  {
    const TPipeSignalShield shield;
    ::pthread_kill(::pthread_self(), SIGPIPE);
  }
  EXPECT_TRUE(IsBlocked());
  EXPECT_TRUE(IsPending());
  const timespec atOnce{};
  EXPECT_EQ(::sigtimedwait(&mask, nullptr, &atOnce), SIGPIPE);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
