// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "parsers/TDiagnosticResultMessage.h"

namespace {

struct TEntry {
  const char* name;
  std::vector<std::string> messages;
  std::vector<TDiagnosticAction> actions;
  const char* text;
};
void PrintTo(const TEntry& row, std::ostream* out) {
  *out << row.name;
}

class ResultMessageTest : public ::testing::TestWithParam<TEntry> {};

TEST_P(ResultMessageTest, PrintsTheLastMessageAndEveryAction) {
  TDiagnosticResultMessage entry{"test", "code", "state", GetParam().messages, GetParam().actions};
  EXPECT_EQ(entry.getMessage(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    All, ResultMessageTest,
    ::testing::Values(TEntry{"Nothing", {}, {}, ""}, TEntry{"Message", {"A"}, {}, "A\n"},
                      TEntry{"LastMessage", {"A", "B", "C"}, {}, "C\n"},
                      TEntry{"LastMessageIsEmpty", {"A", ""}, {}, "\n"},
                      TEntry{"ActionAlone", {}, {{"1", "Do"}}, "1. Do\n"},
                      TEntry{"EmptyAction", {}, {{"", ""}}, ". \n"},
                      TEntry{"Everything",
                             {"A", "B"},
                             {{"1", "Reseat the cable"}, {"2", "Replace the drive"}},
                             "B\n1. Reseat the cable\n2. Replace the drive\n"},
                      TEntry{"ActionsInTheirOrder", {}, {{"2", "b"}, {"1", "a"}}, "2. b\n1. a\n"}),
    [](const auto& row) { return row.param.name; });

TEST(ResultMessageCopyTest, HoldsEveryFieldOfItsOwn) {
  TDiagnosticResultMessage entry{"test", "code", "state", {"message"}, {{"1", "action"}}};
  const TDiagnosticResultMessage copy(entry);
  entry = {};
  EXPECT_EQ(copy.testName, "test");
  EXPECT_EQ(copy.errorCode, "code");
  EXPECT_EQ(copy.state, "state");
  EXPECT_EQ(copy.getMessage(), "message\n1. action\n");
}

}  // namespace
