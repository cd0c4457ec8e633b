// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "host/Label.h"

namespace host {
namespace {

struct TBadLabel {
  const char* name;
  std::string label;
  const char* fault;
};
void PrintTo(const TBadLabel& row, std::ostream* out) {
  *out << row.name;
}

class LabelFaultTest : public ::testing::TestWithParam<TBadLabel> {};

TEST_P(LabelFaultTest, IsNamedWithTheReason) {
  const std::string fault = FindLabelFault(GetParam().label);
  EXPECT_THAT(fault, ::testing::HasSubstr(GetParam().fault));
  EXPECT_THAT(fault, ::testing::HasSubstr("shell"));
  EXPECT_EQ(MakeDefaultLabel(GetParam().label), "");
}
INSTANTIATE_TEST_SUITE_P(
    All, LabelFaultTest,
    ::testing::Values(TBadLabel{"SingleQuote", "Tape RW Test'; reboot; '", "single quote"},
                      TBadLabel{"DoubleQuote", "a\"b", "double quote"},
                      TBadLabel{"Backquote", "`id`", "backquote"},
                      TBadLabel{"Backslash", "a\\", "backslash"},
                      TBadLabel{"Dollar", "$(id)", "dollar"},
                      TBadLabel{"LineEnd", "a\nb", "control character"},
                      TBadLabel{"Nul", std::string("a\0", 2), "control character"},
                      TBadLabel{"Escape", "\x1b[m", "control character"},
                      TBadLabel{"Delete", "\x7f", "control character"},
                      TBadLabel{"NotUtf8", "\xff", "not UTF-8"}),
    [](const auto& row) { return row.param.name; });

TEST(LabelTest, AcceptsTextsThatAShellPrintsAsTheyAre) {
  for (const char* label : {"", "Tape RW Test", "a;b&c|d<e>(f)*?!",
                            "Pr\xc3\xbc"
                            "fung"}) {
    EXPECT_EQ(FindLabelFault(label), "") << label;
    EXPECT_EQ(MakeDefaultLabel(label), label);
  }
}

}  // namespace
}  // namespace host
