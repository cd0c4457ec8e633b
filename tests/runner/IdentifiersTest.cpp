// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

struct TRow {
  const char* identifier;
  bool isSplit;
  const char* name;
  const char* deviceID;
  const char* elementName;
};

std::ostream& operator<<(std::ostream& out, const TRow& row) {
  return out << "\"" << row.identifier << "\"";
}

class IdentifiersTest : public TRunnerTest, public ::testing::WithParamInterface<TRow> {};

TEST_P(IdentifiersTest, SplitsAtTheFirstTwoCommas) {
  const TRow& row = GetParam();
  std::string name = "old1";
  std::string deviceID = "old2";
  std::string elementName = "old3";
  EXPECT_EQ(TAccess::GetTestName(Start(), row.identifier, name, deviceID, elementName),
            row.isSplit);
  EXPECT_EQ(name, row.name);
  EXPECT_EQ(deviceID, row.deviceID);
  EXPECT_EQ(elementName, row.elementName);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IdentifiersTest,
    ::testing::Values(
        TRow{"a,b,c", true, "a", "b", "c"}, TRow{"a,b,c,d", true, "a", "b", "c,d"},
        TRow{"a,b,", true, "a", "b", ""}, TRow{",,", true, "", "", ""},
        TRow{",,,", true, "", "", ","}, TRow{" a , b , c ", true, " a ", " b ", " c "},
        TRow{"\"a,b\",c", true, "\"a", "b\"", "c"}, TRow{"abc", false, "old1", "old2", "old3"},
        TRow{"", false, "old1", "old2", "old3"}, TRow{"a,b", false, "a", "old2", "old3"},
        TRow{",", false, "", "old2", "old3"}, TRow{"a,", false, "a", "old2", "old3"}));

}  // namespace
}  // namespace scripted
