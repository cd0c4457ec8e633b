// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "host/TOutputRedirect.h"

namespace host {
namespace {

constexpr char kLostLine[] =
    "^diagsrun: standard output: its descriptor was closed or changed, which only a provider's "
    "library would do; what goes there is lost; see rule R7\n$";

class OutputRedirectTest : public ::testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  // Reports after somebody has meddled with the descriptor meanwhile; ends with 2 when that fails.
  template <class TMeddle>
  [[noreturn]] static void ReportAfter(const TMeddle& meddle) {
    for (int i = 0; i < 2; ++i) {
      const TOutputRedirect redirect(EOutputTarget::kStandardError);
      if (i == 0) meddle(GetOutputDescriptor());
    }
    std::puts("the report");
    ::_exit(IsOutputGood() ? 0 : 2);
  }
};

TEST_F(OutputRedirectTest, AClosedDescriptorLosesTheOutputWithOneLine) {
  EXPECT_EXIT(ReportAfter([](int descriptor) { ::close(descriptor); }),
              ::testing::ExitedWithCode(2), kLostLine);
}

TEST_F(OutputRedirectTest, AnotherFileInItsPlaceLosesTheOutputAndStaysOpen) {
  const auto replace = [] {
    int taken = -1;
    {
      const TOutputRedirect redirect(EOutputTarget::kStandardError);
      taken = GetOutputDescriptor();
      ::dup2(::open("/dev/zero", O_RDONLY | O_CLOEXEC), taken);
    }
    ::_exit(!IsOutputGood() && ::fcntl(taken, F_GETFD) >= 0 ? 2 : 0);
  };
  EXPECT_EXIT(replace(), ::testing::ExitedWithCode(2), kLostLine);
}

TEST_F(OutputRedirectTest, OneThatIsLeftAloneLeadsBack) {
  EXPECT_EXIT(ReportAfter([](int) { std::puts("words"); }), ::testing::ExitedWithCode(0),
              "^words\n$");
}

}  // namespace
}  // namespace host
