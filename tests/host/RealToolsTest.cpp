// SPDX-License-Identifier: Apache-2.0
//
// One short test of each kind, by the real tools, as far as this machine offers it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/host/THostFixture.h"

namespace host {
namespace {

using ::testing::HasSubstr;

struct TKind {
  const char* name;
  const char* test;
};
void PrintTo(const TKind& row, std::ostream* out) {
  *out << row.name;
}

class RealToolsTest : public THostFixture, public ::testing::WithParamInterface<TKind> {};

TEST_P(RealToolsTest, PassOnAMachineThatWorks) {
  const std::vector<std::string> ids = FindTests(GetParam().test);
  if (ids.empty()) GTEST_SKIP() << "this machine offers no " << GetParam().test;
  const TFinished finished = Run({"run", ids.front()});
  EXPECT_EQ(finished.status, 0) << finished.out << finished.err;
  EXPECT_THAT(finished.out, HasSubstr("      Pass ("));
  EXPECT_THAT(finished.out, HasSubstr("      | Verdict: passed"));
}
INSTANTIATE_TEST_SUITE_P(All, RealToolsTest,
                         ::testing::Values(TKind{"Processor", "Processor Short Stress"},
                                           TKind{"Memory", "Memory Short Pattern"},
                                           TKind{"Disk", "Read Verify"},
                                           TKind{"Network", "Network Link Check"}),
                         [](const auto& row) { return row.param.name; });

using EstimateTest = THostFixture;

TEST_F(EstimateTest, ATestOfMinutesShowsItsEstimateOnATerminal) {
  const std::vector<std::string> ids = FindTests("Memory Extended Pattern");
  if (ids.empty()) GTEST_SKIP() << "memtester is not offered here";
  TProgram program = MakeCommand({"run", ids.front()});
  program.hasTerminal = true;
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 0) << finished.out << finished.err;
  EXPECT_THAT(finished.out, HasSubstr("%\b\b\b"));
  EXPECT_THAT(finished.out, HasSubstr("\b\b\b\b    "));
  EXPECT_THAT(finished.out, HasSubstr("      Pass ("));
}

}  // namespace
}  // namespace host
